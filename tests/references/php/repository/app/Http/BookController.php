<?php

namespace App\Http;

use App\Errors;
use App\Models\Book;
use App\Models\Kind;
use App\Models as Data;
use Illuminate\Support\Facades\Route;
use function App\Http\checked;

require __DIR__ . '/../routes.php';

class BookController
{
    #[Get('/books')]
    public function show(Request $request, Book ...$books)
    {
        try {
            $kind = checked($request);
            $found = match ($kind) {
                Kind::Paper, Kind::Sound => Book::find($kind),
                default => Data\Author::wrote($kind),
            };
            if ($found instanceof Book || $found === Kind::Paper) {
                return $this->shown($found, fn (Data\Slug $slug) => $slug->show());
            }
        } catch (Errors\Missing | \RuntimeException $error) {
            throw_if($error instanceof Errors\Exception, Errors\Missing::class);
            route('shown');
        }
        switch ($kind) {
            case Kind::Sound:
                $Book = $_ENV['SHOP_SOUND'] ?? getenv('SHOP_MODE') ?: config('shop.mode');
                return $Book;
        }
    }

    protected function shown(Book $book, $how)
    {
        return array_map([self::class, 'show'], [$book->author, static::show($book)]);
    }

    private function route()
    {
        return 'config/shop.php';
    }
}

function checked($value)
{
    return $value;
}
