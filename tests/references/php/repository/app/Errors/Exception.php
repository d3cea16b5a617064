<?php

namespace App\Errors;

class Exception extends \Exception
{
}

class Missing extends Exception
{
}

trait Reports
{
    public function open($at)
    {
        return new \Exception(previous: new Exception());
    }
}
