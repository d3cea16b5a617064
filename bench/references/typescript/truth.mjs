#!/usr/bin/env node
// Prints which declarations of a repository its scripts name, and in which role, found with the
// TypeScript compiler's checker: lines of "source<TAB>role<TAB>target<TAB>name".
//
//   truth.mjs REPO
//
// A package of the repository that only a build would make is noted on stderr as
// "unjudged<TAB>folder".
//
// Of a path ("a.b.c") the checker is asked for the first name; the rest is followed through
// modules, namespaces, enumerations and what classes hold themselves, not through the types of
// values. Names local to a function are none, and neither are globals of other scripts.

import fs from 'node:fs';
import path from 'node:path';

import { files, inRepo, isScript, known, member, repo, resolve, ts } from '../../typescript_repository.mjs';

const K = ts.SyntaxKind;
const scripts = files.filter(isScript).filter((f) => fs.statSync(path.join(repo, f)).size < 1 << 21);
const options = {
  allowJs: true, noLib: true, types: [], jsx: ts.JsxEmit.Preserve, target: ts.ScriptTarget.Latest,
  module: ts.ModuleKind.ESNext, moduleResolution: ts.ModuleResolutionKind.Bundler, noEmit: true,
};
// What a build has yet to make of a package the compiler can not follow.
const unjudged = new Set();
function note(specifier, file) {
  const name = specifier.match(/^(?:@[^/]+\/)?[^/]+/)?.[0];
  const folder = name && member(name, path.dirname(file));
  if (folder) unjudged.add(inRepo(folder));
}
const host = {
  ...ts.createCompilerHost(options),
  getCurrentDirectory: () => repo,
  resolveModuleNameLiterals: (literals, file) => literals.map((literal) => {
    const found = resolve(literal.text, file);
    if (found === undefined) note(literal.text, file);
    const usable = found !== undefined && known.has(found) && isScript(found);
    return {
      resolvedModule: usable
        ? { resolvedFileName: path.join(repo, found), extension: path.extname(found), isExternalLibraryImport: false }
        : undefined,
    };
  }),
};
const program = ts.createProgram(scripts.map((f) => path.join(repo, f)), options, host);
const checker = program.getTypeChecker();

// ---- what a name stands for

const isLocal = (declaration) => {
  for (let up = declaration.parent; up; up = up.parent) {
    if (ts.isFunctionLike(up) || ts.isCatchClause(up) || ts.isClassStaticBlockDeclaration(up)) return true;
    if (ts.isClassExpression(up) && !ts.isVariableDeclaration(up.parent)) return true;
  }
  return ts.isTypeParameterDeclaration(declaration) || ts.isParameter(declaration);
};

const bare = (node) => {
  while (ts.isNonNullExpression(node) || ts.isParenthesizedExpression(node) && ts.isIdentifier(node.expression)) {
    node = node.expression;
  }
  return node;
};

// The names of a path; none when it is anything else.
function names(node) {
  node = bare(node);
  if (ts.isIdentifier(node)) return [node];
  if (ts.isPropertyAccessExpression(node)) {
    const front = names(node.expression);
    return front && ts.isIdentifier(node.name) ? [...front, node.name] : undefined;
  }
  if (ts.isQualifiedName(node)) {
    const front = names(node.left);
    return front && [...front, node.right];
  }
  return undefined;
}

// Of an import that ends at a file ("export * from" outside) the name there.
function handedOn(alias) {
  const specifier = alias.declarations[0];
  let statement = specifier;
  while (statement && !statement.moduleSpecifier) statement = statement.parent;
  if (!statement || !ts.isStringLiteral(statement.moduleSpecifier)) return undefined;
  const target = resolve(statement.moduleSpecifier.text, specifier.getSourceFile().fileName);
  if (target === undefined || !known.has(target) || !isScript(target)) return undefined;
  const name = ts.isImportClause(specifier) ? 'default' : (specifier.propertyName ?? specifier.name).text;
  return { flags: ts.SymbolFlags.Alias, name, target, declarations: [specifier] };
}

// What a file of the repository hands on from outside is its own as far as anyone can tell.
function unaliased(symbol) {
  let last = symbol;
  for (let hops = 0; last.flags & ts.SymbolFlags.Alias && hops < 32; ++hops) {
    const next = checker.getImmediateAliasedSymbol(last);
    if (!next?.declarations?.length) return handedOn(last) ?? (last === symbol ? undefined : last);
    last = next;
  }
  return last;
}

// Of "module.exports = name" and "module.exports = require(…)" what that is.
function assigned(symbol, hops) {
  const assignment = symbol.declarations?.find((d) => ts.isBinaryExpression(d)
    && ts.isPropertyAccessExpression(d.left) && /^(module\.)?exports\b/.test(d.left.getText()));
  if (!assignment || hops > 8) return symbol;
  let value = assignment.right;
  while (ts.isBinaryExpression(value) && value.operatorToken.kind === K.EqualsToken) value = value.right;
  if (ts.isCallExpression(value) && value.expression.getText() === 'require' && ts.isStringLiteralLike(value.arguments[0])) {
    const file = value.getSourceFile().fileName;
    const target = resolve(value.arguments[0].text, file);
    const module = target && program.getSourceFile(path.join(repo, target))?.symbol;
    const whole = module?.exports?.get('export=') ?? module;
    return whole ? assigned(whole, hops + 1) : symbol;
  }
  if (!ts.isIdentifier(value)) return symbol;
  const next = checker.getSymbolAtLocation(value);
  if (!next?.declarations?.length || next.declarations.includes(assignment)) return symbol;
  if (!(next.flags & ts.SymbolFlags.Alias)) return assigned(next, hops + 1);
  const origin = unaliased(next);
  return origin ? assigned(origin, hops + 1) : symbol;
}
const holds = ts.SymbolFlags.Module | ts.SymbolFlags.Class | ts.SymbolFlags.Enum;

function memberOf(symbol, name) {
  if (!(symbol.flags & (holds | ts.SymbolFlags.Function))) return undefined;
  if (symbol.flags & ts.SymbolFlags.Module) {
    const found = checker.tryGetMemberInModuleExports(name, symbol);
    if (found) return unaliased(found) ?? found;
  }
  const found = symbol.exports?.get(ts.escapeLeadingUnderscores(name));
  return found && (unaliased(found) ?? found);
}

// { symbol, partial }
function thing(node) {
  const parts = names(node);
  if (!parts) return undefined;
  const [first, ...rest] = parts;
  const shorthand = ts.isShorthandPropertyAssignment(first.parent);
  let symbol = shorthand
    ? checker.getShorthandAssignmentValueSymbol(first.parent) : checker.getSymbolAtLocation(first);
  if (!symbol?.declarations?.length) return undefined;
  const file = first.getSourceFile();
  if (!symbol.declarations.some((d) => d.getSourceFile() === file) || symbol.declarations.some(isLocal)) return undefined;
  symbol = unaliased(symbol);
  if (!symbol) return undefined;
  let partial = false;
  for (const part of rest) {
    const next = memberOf(symbol, part.text) ?? memberOf(assigned(symbol, 0), part.text);
    if (!next) { partial = true; break; }
    symbol = next;
  }
  symbol = assigned(symbol, 0);
  if (!symbol.declarations?.length) return undefined;
  return { symbol, partial };
}

function nameOf(symbol) {
  if (symbol.target) return symbol.name;
  const declaration = symbol.declarations[0];
  if (ts.isSourceFile(declaration)) return '';
  const own = ts.getNameOfDeclaration(declaration);
  const text = own && ts.isIdentifier(own) ? own.text : symbol.name;
  const holder = declaration.parent;
  if (ts.isClassLike(holder) || ts.isEnumDeclaration(holder)) return `${holder.name?.text ?? 'default'}.${text}`;
  if (ts.isBinaryExpression(declaration) && text === 'export=') {
    if (ts.isVariableDeclaration(holder)) return holder.name.text;
    return declaration.right.name?.text ?? 'default';
  }
  if (text === 'export=' || text === 'module.exports' || text === 'exports') return 'default';
  return text;
}

const isType = (d) => ts.isClassLike(d) || ts.isInterfaceDeclaration(d) || ts.isTypeAliasDeclaration(d) || ts.isEnumDeclaration(d)
  || (ts.isVariableDeclaration(d) && d.initializer && ts.isClassExpression(d.initializer));
const isContract = (d) => ts.isInterfaceDeclaration(d) || (ts.isTypeAliasDeclaration(d) && ts.isTypeLiteralNode(d.type));

function roleTowards(symbol, role) {
  if (symbol.flags & ts.SymbolFlags.Alias) return role;
  const types = symbol.declarations.filter(isType);
  if (role === 'calls' && types.length > 0) return 'constructs';
  if (role === 'constructs' && types.length === 0) return 'calls';
  if (role === 'extends' || role === 'implements') return types.some(isContract) ? 'implements' : 'extends';
  return role;
}

const lines = new Set();
function mention(node, role) {
  const found = thing(node);
  if (!found) return;
  const { symbol, partial } = found;
  const target = symbol.target ?? inRepo(symbol.declarations[0].getSourceFile().fileName);
  if (!known.has(target) || symbol.name.startsWith('"')) return;
  for (let up = node; up; up = up.parent) if (symbol.declarations.includes(up)) return;
  if (partial && (role === 'calls' || role === 'constructs')) return;
  const source = inRepo(node.getSourceFile().fileName);
  lines.add([source, roleTowards(symbol, role), target, nameOf(symbol)].join('\t'));
}

// ---- roles

// The values that an expression hands on as they are.
function* values(node) {
  if (ts.isParenthesizedExpression(node) || ts.isAsExpression(node) || ts.isNonNullExpression(node)
      || ts.isSatisfiesExpression?.(node) || ts.isTypeAssertionExpression(node)) {
    yield* values(node.expression);
  } else if (ts.isConditionalExpression(node)) {
    yield* values(node.whenTrue);
    yield* values(node.whenFalse);
  } else if (ts.isSpreadElement(node) || ts.isSpreadAssignment(node)) {
    yield* values(node.expression);
  } else {
    yield node;
  }
}
const list = (node) => { for (const value of values(node)) mention(value, 'lists'); };

function throwing(node) {
  for (const value of values(node)) {
    if (ts.isNewExpression(value) || ts.isCallExpression(value)) mention(value.expression, 'throws');
    else if (ts.isBinaryExpression(value)) { throwing(value.left); throwing(value.right); }
    else mention(value, 'throws');
  }
}
const isThrown = (node) => {
  let up = node.parent;
  while (ts.isParenthesizedExpression(up) || ts.isAsExpression(up) || ts.isConditionalExpression(up)
      || (ts.isBinaryExpression(up) && up.operatorToken.kind !== K.InstanceOfKeyword)) up = up.parent;
  return ts.isThrowStatement(up)
    || (ts.isCallExpression(up) && /^(Promise\.)?reject$/.test(up.expression.getText()));
};

const visitors = {
  [K.HeritageClause]: (node) => node.types.forEach((type) => {
    let base = type.expression;
    while (ts.isCallExpression(base)) base = base.expression;
    mention(base, node.token === K.ImplementsKeyword ? 'implements' : 'extends');
  }),
  [K.ThrowStatement]: (node) => throwing(node.expression),
  [K.NewExpression]: (node) => {
    if (isThrown(node)) mention(node.expression, 'throws');
    else mention(node.expression, 'constructs');
    node.arguments?.forEach(list);
  },
  [K.CallExpression]: (node) => {
    const base = ts.isExpressionWithTypeArguments(node.parent) || ts.isDecorator(node.parent);
    if (!base && !ts.isThrowStatement(node.parent)) mention(node.expression, 'calls');
    const rejects = /^(Promise\.)?reject$/.test(node.expression.getText());
    if (!rejects) node.arguments.forEach(list);
  },
  [K.TaggedTemplateExpression]: (node) => mention(node.tag, 'calls'),
  [K.JsxOpeningElement]: (node) => element(node.tagName),
  [K.JsxSelfClosingElement]: (node) => element(node.tagName),
  [K.TypeReference]: (node) => mention(node.typeName, 'type'),
  [K.TypeQuery]: (node) => mention(node.exprName, 'type'),
  [K.Decorator]: (node) => mention(ts.isCallExpression(node.expression) ? node.expression.expression : node.expression, 'annotates'),
  [K.BinaryExpression]: (node) => {
    if (node.operatorToken.kind === K.InstanceOfKeyword) mention(node.right, 'catches');
  },
  [K.ArrayLiteralExpression]: (node) => node.elements.forEach(list),
  [K.PropertyAssignment]: (node) => list(node.initializer),
  [K.ShorthandPropertyAssignment]: (node) => mention(node.name, 'lists'),
  [K.SpreadAssignment]: list,
  [K.ComputedPropertyName]: (node) => {
    if (ts.isPropertyAssignment(node.parent)) list(node.expression);
  },
  [K.CaseClause]: (node) => list(node.expression),
  [K.JsxAttribute]: (node) => {
    if (node.initializer && ts.isJsxExpression(node.initializer) && node.initializer.expression) list(node.initializer.expression);
  },
};
function element(tag) {
  if (!ts.isIdentifier(tag) || /^[^a-z]/.test(tag.text)) mention(tag, 'constructs');
}

for (const script of scripts) {
  const source = program.getSourceFile(path.join(repo, script));
  const open = source ? [source] : [];
  while (open.length > 0) {
    const node = open.pop();
    visitors[node.kind]?.(node);
    ts.forEachChild(node, (child) => { open.push(child); });
  }
}
for (const line of [...lines].sort()) console.log(line);
for (const folder of [...unjudged].sort()) console.error(`unjudged\t${folder}`);
