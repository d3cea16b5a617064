<?php

use App\Http\BookController;

$router = new BookController();
Route::get('/books', [BookController::class, 'show']);
Route::get('/shown', 'BookController@shown');
app()->bind(App\Models\Readable::class, '\App\Models\Book');
