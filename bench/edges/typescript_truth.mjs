#!/usr/bin/env node
// Prints what the scripts of a repository import, found with the TypeScript compiler: one line an
// edge, "source<TAB>target".
//
//   typescript_truth.mjs REPO
//
// A package of the repository that only a build would make is noted on stderr as
// "unjudged<TAB>source<TAB>folder".

import fs from 'node:fs';
import path from 'node:path';

import { files, inRepo, isScript, isText, known, member, repo, resolve, ts } from '../typescript_repository.mjs';

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
