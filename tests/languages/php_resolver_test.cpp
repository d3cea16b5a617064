#include "tests/languages/resolver_cases.h"

namespace kestrix::index {
namespace {

TEST(PhpResolver, FindsNamesAndFiles) {
  check({
      {"a full name leads to its namespace's file, wherever that lies",
       {{"src/Http/Kernel.php",
         "<?php namespace App\\Http; use App\\Models\\{User, Team as T};\n"
         "use function App\\Support\\help; new User; new T; help();"},
        {"lib/models/User.php", "<?php namespace App\\Models; class User {}"},
        {"lib/models/Team.php", "<?php namespace App\\Models; class Team {}"},
        {"lib/help.php", "<?php namespace App\\Support; function help() {}"},
        {"other/User.php", "<?php namespace Other\\Models; class User {}"}},
       {"src/Http/Kernel.php -> lib/models/User.php", "src/Http/Kernel.php -> lib/models/Team.php",
        "src/Http/Kernel.php -> lib/help.php"}},
      {"several folders hold one prefix, and the tests another",
       {{"composer.json", R"({"autoload": {"psr-4": {"App\\": ["src/", "lib/"]}},
                             "autoload-dev": {"psr-4": {"App\\Tests\\": "tests/"}}})"},
        {"src/A.php", "<?php namespace App; class A {}"},
        {"lib/Deep/B.php", "<?php namespace App\\Deep; class B extends \\App\\A {}"},
        {"tests/ATest.php",
         "<?php namespace App\\Tests; use App\\{A, Deep\\B}; class ATest extends Base {}"},
        {"tests/Base.php", "<?php namespace App\\Tests; class Base {}"}},
       {"lib/Deep/B.php -> src/A.php", "tests/ATest.php -> src/A.php",
        "tests/ATest.php -> lib/Deep/B.php", "tests/ATest.php -> tests/Base.php"}},
      {"names of the own namespace need no import",
       {{"a/A.php", "<?php namespace N; class A extends B { function f(C $c) {} }"},
        {"a/B.php", "<?php namespace N; class B {}"},
        {"c/C.php", "<?php namespace M; class C {}"}},
       {"a/A.php -> a/B.php"}},
      {"full names in the code",
       {{"boot.php",
         "<?php use App\\Http; return [\\App\\Models\\User::class, Http\\Kernel::class];"},
        {"a/User.php", "<?php namespace App\\Models; class User {}"},
        {"a/Kernel.php", "<?php namespace App\\Http; class Kernel {}"}},
       {"boot.php -> a/User.php", "boot.php -> a/Kernel.php"}},
      {"files by their paths",
       {{"web/index.php",
         "<?php require __DIR__ . '/../boot.php'; require_once 'lib/x.php';\n"
         "include 'part.php'; require $dir . '/y.php'; require '../../up.php';"},
        {"boot.php", "<?php"},
        {"lib/x.php", "<?php"},
        {"web/part.php", "<?php"},
        {"y.php", "<?php"}},
       {"web/index.php -> boot.php", "web/index.php -> lib/x.php",
        "web/index.php -> web/part.php"}},
      {"a missing name of a namespace at hand is a miss, another's is a library",
       {{"A.php",
         "<?php namespace App; use App\\Gone; use Vendor\\Thing; require __DIR__.'/no.php';"},
        {"B.php", "<?php namespace App; class B {}"}},
       {"unresolved 2"}},
  });
}

}  // namespace
}  // namespace kestrix::index
