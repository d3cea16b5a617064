<?php

namespace App\Models;

use App\Errors\{Missing, Exception as Failure};
use Illuminate\Database\Eloquent\Model;

#[Audited]
class Book extends Model implements Readable, \JsonSerializable
{
    use HasSlug, \App\Errors\Reports;

    public const KINDS = ['paper' => Paper::class, 'sound' => Sound::class];
    protected $table = 'books';

    public function __construct(private readonly Author $author, string $title = self::TITLE)
    {
        parent::__construct();
    }

    public function author(): ?Author
    {
        return $this->belongsTo(Author::class);
    }

    public static function find(int|Slug $id, callable $author): static
    {
        $slug = $author($id);
        if ($slug === null) {
            throw new Missing(static::class, slug($id));
        }
        return $this->open($slug);
    }

    private function slug(string $of): string
    {
        return self::find($this->slugOf($of));
    }
}
