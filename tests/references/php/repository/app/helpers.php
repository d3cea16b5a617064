<?php

use App\Models\Author;

const SHELF = 3;

if (! function_exists('slug')) {
    function slug($text): string
    {
        return Author::class . $text;
    }
}
