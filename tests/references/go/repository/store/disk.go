package store

type Disk struct {
	closing
	path string
}

type closing struct{}

func (closing) Close() error { return nil }

func (d *Disk) Get(key string) (Item, error) { return Item{Name: d.path}, nil }

// Ranged has a method of the name, but with another number of parameters.
type Ranged struct{ closing }

func (Ranged) Get(from, to string) (Item, error) { return Item{}, nil }
