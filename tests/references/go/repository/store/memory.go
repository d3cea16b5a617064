package store

type Memory struct {
	base
	items map[string]Item
}

type base struct{}

var _ Store = (*Memory)(nil)

func (m *Memory) Get(key string) (Item, error) {
	item, found := m.items[key]
	if !found {
		return Item{}, ErrMissing
	}
	if key == "" {
		return item, &ParseError{Line: 1}
	}
	return item, nil
}

func New(kinds ...Kind) *Memory { return &Memory{items: map[string]Item{"a": {Name: "a", Kind: Plain}}} }

func (i Item) Describe() string { return label(i.Kind) }

var labels = map[Kind]string{Plain: "plain", Fancy: "fancy"}

func label(kind Kind) string { return labels[kind] }
