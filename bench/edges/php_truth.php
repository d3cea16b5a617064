<?php
// Prints what a repository's PHP files depend on: "source<TAB>target" lines. Names are found with
// PHP's own tokenizer and led to files by the autoload rules of every composer.json (PSR-4, class
// maps by declared names), inclusions by their literal paths. Knows nothing of the index.

$repo = rtrim($argv[1], '/');
exec('git -C ' . escapeshellarg($repo) . ' ls-files -z', $lines);
$files = array_filter(explode("\0", implode("\n", $lines)));
$known = array_fill_keys($files, true);

function normal(string $path): string {
    $parts = [];
    foreach (explode('/', $path) as $part) {
        if ($part === '..') { array_pop($parts); } elseif ($part !== '' && $part !== '.') { $parts[] = $part; }
    }
    return implode('/', $parts);
}

$prefixes = [];
foreach ($files as $file) {
    if (basename($file) !== 'composer.json') continue;
    $json = json_decode(file_get_contents("$repo/$file"), true) ?? [];
    foreach (['autoload', 'autoload-dev'] as $section) {
        foreach ($json[$section]['psr-4'] ?? [] as $prefix => $folders) {
            foreach ((array)$folders as $folder) $prefixes[] = [$prefix, normal(dirname($file) . "/$folder")];
        }
    }
}

$names = [T_STRING, T_NAME_QUALIFIED, T_NAME_FULLY_QUALIFIED];
function tokens_of(string $path): array {
    return array_values(array_filter(PhpToken::tokenize(file_get_contents($path)),
        fn($t) => !$t->isIgnorable()));
}

// Declared names, for what no autoload rule places.
$declared = [];
$parsed = [];
foreach ($files as $file) {
    if (!preg_match('/\.(php|phtml|inc)$/', $file) || is_link("$repo/$file")) continue;
    $tokens = $parsed[$file] = tokens_of("$repo/$file");
    $namespace = '';
    foreach ($tokens as $i => $token) {
        $next = $tokens[$i + 1] ?? null;
        if ($token->is(T_NAMESPACE) && $next?->is($names)) $namespace = $next->text;
        if ($token->is([T_CLASS, T_INTERFACE, T_TRAIT, T_ENUM]) && $next?->is(T_STRING) && !($tokens[$i - 1] ?? null)?->is(T_DOUBLE_COLON)) {
            $declared[ltrim("$namespace\\$next->text", '\\')][] = $file;
        }
    }
}

function locate(string $name): array {
    global $prefixes, $known, $declared;
    foreach ($prefixes as [$prefix, $folder]) {
        if (!str_starts_with($name, $prefix)) continue;
        $path = normal($folder . '/' . strtr(substr($name, strlen($prefix)), '\\', '/') . '.php');
        if (isset($known[$path])) return [$path];
    }
    $all = array_unique($declared[$name] ?? []);
    return count($all) === 1 ? array_values($all) : [];
}

foreach ($parsed as $file => $tokens) {
    $namespace = '';
    $aliases = [];
    $targets = [];
    $depth = 0;
    $count = count($tokens);
    for ($i = 0; $i < $count; $i++) {
        $token = $tokens[$i];
        $next = $tokens[$i + 1] ?? null;
        $before = $tokens[$i - 1] ?? null;
        if ($token->text === '{') $depth++;
        if ($token->text === '}') $depth--;
        if ($token->is(T_NAMESPACE) && $next?->is($names)) { $namespace = $next->text; $i++; continue; }
        if ($token->is(T_USE) && $depth === 0 && $before?->text !== ')') {
            $prefix = '';
            $name = '';
            for ($i++; $i < $count && $tokens[$i]->text !== ';'; $i++) {
                $t = $tokens[$i];
                if ($t->is(T_AS)) { $aliases[$tokens[++$i]->text] = $name; continue; }
                if ($t->text === '{') { $prefix = rtrim($name, '\\') . '\\'; $name = ''; continue; }
                if ($t->is($names)) {
                    $name = ltrim($prefix . $t->text, '\\');
                    $aliases[substr(strrchr("\\$name", '\\'), 1)] = $name;
                    foreach (locate($name) as $path) $targets[$path] = true;
                }
            }
            continue;
        }
        if ($token->is([T_REQUIRE, T_REQUIRE_ONCE, T_INCLUDE, T_INCLUDE_ONCE])) {
            $k = $next?->text === '(' ? $i + 2 : $i + 1;
            $here = false;
            if (($tokens[$k] ?? null)?->is(T_DIR) && $tokens[$k + 1]->text === '.') { $here = true; $k += 2; }
            $literal = $tokens[$k] ?? null;
            if ($literal?->is(T_CONSTANT_ENCAPSED_STRING) && ($tokens[$k + 1] ?? null)?->text !== '.') {
                $path = substr($literal->text, 1, -1);
                foreach ($here ? [dirname($file)] : [dirname($file), ''] as $folder) {
                    $whole = normal("$folder/$path");
                    if (isset($known[$whole])) { $targets[$whole] = true; break; }
                }
            }
        }
        if (!$token->is($names) || !preg_match('/(^|\\\\)[A-Z]\w*$/', $token->text)) continue;
        if ($before?->is([T_OBJECT_OPERATOR, T_NULLSAFE_OBJECT_OPERATOR, T_DOUBLE_COLON, T_FUNCTION, T_CONST, T_CLASS])) continue;
        if ($next?->text === '(' && !$before?->is([T_NEW, T_ATTRIBUTE]) && $before?->text !== ',') continue;
        if ($token->is(T_NAME_FULLY_QUALIFIED)) {
            $name = substr($token->text, 1);
        } else {
            $parts = explode('\\', $token->text, 2);
            $first = $aliases[$parts[0]] ?? ltrim("$namespace\\$parts[0]", '\\');
            $name = isset($parts[1]) ? "$first\\$parts[1]" : $first;
        }
        foreach (locate($name) as $path) $targets[$path] = true;
    }
    foreach (array_keys($targets) as $target) {
        if ($target !== $file) echo "$file\t$target\n";
    }
}
