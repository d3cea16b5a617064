package api

import (
	"errors"
	"net/http"
	"os"

	db "example.com/shop/store"
)

type Handler func(s db.Store) http.Handler

type route struct {
	path    string
	handler Handler
}

var routes = []route{
	{"/items", items},
	{path: "/kinds", handler: kinds},
}

func items(s db.Store) http.Handler { return nil }

func kinds(s db.Store) http.Handler {
	_, err := s.Get(os.Getenv("DEFAULT_KEY"))
	var parse *db.ParseError
	if errors.Is(err, db.ErrMissing) || errors.As(err, &parse) {
		return nil
	}
	switch err.(type) {
	case *db.ParseError:
		register(items)
	}
	return nil
}

func register(handler Handler) {
	db := db.New(db.Fancy)
	db.Get("x")
}
