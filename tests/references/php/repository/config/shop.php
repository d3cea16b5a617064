<?php

return [
    'mode' => env('SHOP_MODE', SHELF),
    'providers' => [App\Http\BookController::class, App\Models\Kind::class],
];
