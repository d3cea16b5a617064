#!/usr/bin/env node
// Prints what the scripts of a repository import, found with the TypeScript compiler: one line an
// edge, "source<TAB>target".
//
//   typescript_truth.mjs REPO
//
// Packages of the repository's workspaces are looked up by the compiler as if they were installed
// (linked into node_modules). One that only a build would make is noted on stderr as
// "unjudged<TAB>source<TAB>folder". The compiler comes from the folder named by TYPESCRIPT, else it
// is installed below the temporary folder.

import { execFileSync } from 'node:child_process';
import fs from 'node:fs';
import { createRequire } from 'node:module';
import os from 'node:os';
import path from 'node:path';

const VERSION = '5.9.3';

function compiler() {
  const folder = process.env.TYPESCRIPT ?? path.join(os.tmpdir(), `typescript-${VERSION}`);
  if (!fs.existsSync(path.join(folder, 'node_modules/typescript'))) {
    fs.mkdirSync(folder, { recursive: true });
    fs.writeFileSync(path.join(folder, 'package.json'), '{"private": true}');
    execFileSync('npm', ['install', '--ignore-scripts', '--no-audit', `typescript@${VERSION}`],
      { cwd: folder, stdio: 'ignore' });
  }
  return createRequire(path.join(folder, 'package.json'))('typescript');
}

const ts = compiler();
const repo = fs.realpathSync(process.argv[2]);
const files = execFileSync('git', ['-C', repo, 'ls-files', '-z'], { maxBuffer: 1 << 28 })
  .toString().split('\0').filter((f) => f && fs.existsSync(path.join(repo, f)));
const known = new Set(files);
const inRepo = (file) => path.relative(repo, file);
const isText = (file) => {
  const absolute = path.join(repo, file);
  return fs.lstatSync(absolute).isFile() && !fs.readFileSync(absolute).subarray(0, 8192).includes(0);
};
const isScript = (file) => /\.[cm]?[jt]sx?$/.test(file);

// ---- workspaces

const json = (file) => ts.parseConfigFileTextToJson(file, fs.readFileSync(file, 'utf8')).config ?? {};
const packages = files.filter((f) => path.basename(f) === 'package.json')
  .map((f) => ({ folder: path.join(repo, path.dirname(f)), ...json(path.join(repo, f)) }));

function patterns(root) {
  const { workspaces } = root;
  const found = [...(Array.isArray(workspaces) ? workspaces : workspaces?.packages ?? [])];
  const pnpm = path.join(root.folder, 'pnpm-workspace.yaml');
  if (fs.existsSync(pnpm)) {
    const text = fs.readFileSync(pnpm, 'utf8').split(/^packages:\s*$/m)[1]?.split(/^\S/m)[0] ?? '';
    for (const [, glob] of text.matchAll(/^\s*-\s*['"]?([^'"#\s]+)/gm)) found.push(glob);
  }
  return found.filter((glob) => !glob.startsWith('!'));
}

// name -> folder, by the folder of the workspace's root
const workspaces = new Map();
for (const root of packages) {
  const globs = patterns(root).map((glob) =>
    new RegExp(`^${glob.replace(/^\.\//, '').replace(/\/$/, '').replace(/[.+^$()|]/g, '\\$&')
      .replace(/\*\*\/?|\*|[{},]/g, (t) => ({ '*': '[^/]*', '{': '(?:', '}': ')', ',': '|' })[t] ?? '.*')}$`));
  const members = new Map(root.name ? [[root.name, root.folder]] : []);
  for (const member of packages) {
    const relative = path.relative(root.folder, member.folder);
    if (member.name && globs.some((glob) => glob.test(relative))) members.set(member.name, member.folder);
  }
  if (members.size > 0) workspaces.set(root.folder, members);
}

function member(name, folder) {
  for (let up = folder; up.startsWith(repo); up = path.dirname(up)) {
    const found = workspaces.get(up)?.get(name);
    if (found) return found;
  }
  return undefined;
}

// Sees each member of a workspace at node_modules/<name> of its root.
function linked(file) {
  const at = file.lastIndexOf('/node_modules/');
  if (at < 0) return file;
  const rest = file.slice(at + '/node_modules/'.length);
  const [, name, tail] = rest.match(/^((?:@[^/]+\/)?[^/]+)(.*)$/) ?? [];
  const target = workspaces.get(file.slice(0, at))?.get(name);
  return target ? target + tail : file;
}

const host = {
  fileExists: (file) => { file = linked(file); return known.has(inRepo(file)); },
  directoryExists: (folder) => {
    if (/\/node_modules(\/@[^/]+)?$/.test(folder)) return true;
    return fs.existsSync(linked(folder));
  },
  readFile: (file) => { try { return fs.readFileSync(linked(file), 'utf8'); } catch { return undefined; } },
  realpath: (file) => linked(file),
  getCurrentDirectory: () => repo,
  useCaseSensitiveFileNames: true,
};

// ---- configurations

const parseHost = { ...ts.sys, readDirectory: () => [], fileExists: host.fileExists, readFile: host.readFile };
const configs = new Map();
function options(folder) {
  if (configs.has(folder)) return configs.get(folder);
  let found;
  for (const name of ['tsconfig.json', 'jsconfig.json']) {
    const file = path.join(folder, name);
    if (!found && known.has(inRepo(file))) {
      found = ts.parseJsonConfigFileContent(json(file), parseHost, folder, {}, file).options;
    }
  }
  found ??= folder === repo || !folder.startsWith(repo) ? {} : options(path.dirname(folder));
  configs.set(folder, found);
  return found;
}

function optionsOf(file) {
  const own = options(path.dirname(file));
  const { NodeNext, Node16, Bundler } = ts.ModuleResolutionKind;
  const kind = own.moduleResolution === NodeNext || own.moduleResolution === Node16
    ? own.moduleResolution : Bundler;
  return { ...own, allowJs: true, resolveJsonModule: true, moduleResolution: kind,
    module: kind === Bundler ? ts.ModuleKind.ESNext : own.module ?? ts.ModuleKind.NodeNext };
}

function resolve(specifier, file) {
  const opts = optionsOf(file);
  const mode = opts.moduleResolution === ts.ModuleResolutionKind.Bundler ? undefined : ts.ModuleKind.ESNext;
  // Bundlers take "./x?worker" for "./x".
  const plain = specifier.replace(/[?].*$/, '');
  const { resolvedModule } = ts.resolveModuleName(plain, file, opts, host, undefined, undefined, mode);
  if (resolvedModule) return inRepo(resolvedModule.resolvedFileName);
  // What is no module for the compiler (a style sheet, a template) is a file all the same.
  if (/^\.\.?\//.test(plain)) return inRepo(path.resolve(path.dirname(file), plain));
  return undefined;
}

// ---- imports and exports of a file

function read(file) {
  const absolute = path.join(repo, file);
  const source = ts.createSourceFile(absolute, fs.readFileSync(absolute, 'utf8'),
    ts.ScriptTarget.Latest, true);
  const imports = [];       // { specifier, names }
  const declared = new Set();
  const handed = new Map(); // exported name -> specifier
  const stars = [];
  const local = new Map();  // local name -> specifier
  const exported = [];      // [local name, exported name]
  const visit = (node) => {
    if (ts.isImportDeclaration(node) && ts.isStringLiteral(node.moduleSpecifier)) {
      const specifier = node.moduleSpecifier.text;
      const clause = node.importClause;
      const names = [];
      if (clause?.name) { names.push('default'); local.set(clause.name.text, specifier); }
      const bindings = clause?.namedBindings;
      if (bindings && ts.isNamespaceImport(bindings)) local.set(bindings.name.text, specifier);
      if (bindings && ts.isNamedImports(bindings)) {
        for (const e of bindings.elements) {
          names.push((e.propertyName ?? e.name).text);
          local.set(e.name.text, specifier);
        }
      }
      imports.push({ specifier, names });
    } else if (ts.isExportDeclaration(node)) {
      const specifier = node.moduleSpecifier?.text;
      const names = [];
      if (node.exportClause && ts.isNamedExports(node.exportClause)) {
        for (const e of node.exportClause.elements) {
          const from = (e.propertyName ?? e.name).text;
          if (specifier === undefined) exported.push([from, e.name.text]);
          else { names.push(from); handed.set(e.name.text, specifier); }
        }
      } else if (specifier !== undefined) {
        if (node.exportClause) handed.set(node.exportClause.name.text, specifier);
        else stars.push(specifier);
      }
      if (specifier !== undefined) imports.push({ specifier, names });
    } else if (ts.isExportAssignment(node) && ts.isIdentifier(node.expression)) {
      exported.push([node.expression.text, 'default']);
      declared.add('default');
    } else if (ts.isImportEqualsDeclaration(node) && ts.isExternalModuleReference(node.moduleReference)
        && ts.isStringLiteralLike(node.moduleReference.expression)) {
      imports.push({ specifier: node.moduleReference.expression.text, names: [] });
    } else if (ts.isImportTypeNode(node) && ts.isLiteralTypeNode(node.argument)
        && ts.isStringLiteral(node.argument.literal)) {
      imports.push({ specifier: node.argument.literal.text, names: [] });
    } else if (ts.isCallExpression(node) && node.arguments.length > 0
        && ts.isStringLiteralLike(node.arguments[0])
        && (node.expression.kind === ts.SyntaxKind.ImportKeyword
          || (ts.isIdentifier(node.expression) && node.expression.text === 'require'))) {
      imports.push({ specifier: node.arguments[0].text, names: boundNames(node) });
    }
    if (ts.canHaveModifiers(node) && ts.getModifiers(node)?.some((m) => m.kind === ts.SyntaxKind.ExportKeyword)) {
      const isDefault = ts.getModifiers(node).some((m) => m.kind === ts.SyntaxKind.DefaultKeyword);
      if (isDefault) declared.add('default');
      else if (ts.isVariableStatement(node)) node.declarationList.declarations.forEach((d) => addNames(d.name, declared));
      else if (node.name) declared.add(node.name.text);
    }
    ts.forEachChild(node, visit);
  };
  visit(source);
  for (const [name, as] of exported) {
    if (local.has(name)) handed.set(as, local.get(name));
    else declared.add(as);
  }
  return { imports, declared, handed, stars };
}

function addNames(name, names) {
  if (ts.isIdentifier(name)) names.add(name.text);
  else name.elements.forEach((e) => e.name && addNames(e.name, names));
}

// const { a, b: c } = require(…), = await import(…)
function boundNames(call) {
  let node = call.parent;
  if (ts.isAwaitExpression(node)) node = node.parent;
  if (ts.isPropertyAccessExpression(node) && node.expression === call) return [node.name.text];
  if (!ts.isVariableDeclaration(node) || !ts.isObjectBindingPattern(node.name)) return [];
  return node.name.elements.filter((e) => !e.dotDotDotToken)
    .map((e) => (e.propertyName ?? e.name).text).filter(Boolean);
}

// ---- edges

const facts = new Map();
for (const file of files.filter(isScript)) facts.set(file, read(file));

const targets = new Map();
function target(file, specifier) {
  const key = `${file}\0${specifier}`;
  if (!targets.has(key)) {
    const found = resolve(specifier, path.join(repo, file));
    targets.set(key, found !== undefined && known.has(found) ? found : undefined);
  }
  return targets.get(key);
}

function oneHop(barrel, name) {
  const fact = facts.get(barrel);
  if (!fact) return undefined;
  if (fact.handed.has(name)) return target(barrel, fact.handed.get(name));
  if (fact.declared.has(name) || name === 'default') return undefined;
  for (const specifier of fact.stars) {
    const next = target(barrel, specifier);
    const inner = next && facts.get(next);
    if (inner && (inner.declared.has(name) || inner.handed.has(name))) return next;
  }
  return undefined;
}

const edges = new Set();
for (const [file, { imports }] of facts) {
  for (const { specifier, names } of imports) {
    const found = target(file, specifier);
    if (found === undefined) {
      const name = specifier.match(/^(?:@[^/]+\/)?[^/]+/)?.[0];
      const folder = name && member(name, path.join(repo, path.dirname(file)));
      if (folder) console.error(`unjudged\t${file}\t${inRepo(folder)}`);
      continue;
    }
    edges.add(`${file}\t${found}`);
    for (const name of names) {
      const next = oneHop(found, name);
      if (next !== undefined) edges.add(`${file}\t${next}`);
    }
  }
}
for (const edge of [...edges].sort()) {
  const [source, found] = edge.split('\t');
  if (source !== found && isText(found)) console.log(edge);
}
