<?php

namespace App\Models;

abstract class Author implements Readable
{
    public function write(): Book
    {
        return new Book($this, new class extends Slug {
            public function write() { return new Slug(); }
        });
    }

    abstract protected function slug(Slug $slug);
}

interface Readable extends \Countable
{
    const TITLE = 'untitled';
    public function open(Slug $at);
}

final class Slug
{
}

trait HasSlug
{
    use Remembers;

    public function slugOf($text): Slug
    {
        return new namespace\Slug(slug($text));
    }
}

enum Kind: string implements Readable
{
    case Paper = 'paper';
    case Sound = 'sound';
}
