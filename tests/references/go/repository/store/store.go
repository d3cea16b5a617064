package store

import (
	"errors"
	"io"
)

// ErrMissing is returned for a key that is not there.
var ErrMissing, errBroken = errors.New("missing"), errors.New("broken")

type Store interface {
	io.Closer
	Get(key string) (Item, error)
}

type Item struct {
	Name, Note string
	Kind       Kind
}

type Kind int

const (
	Plain Kind = iota
	Fancy
)

type ParseError struct{ Line int }

func (e *ParseError) Error() string { return "parse" }
