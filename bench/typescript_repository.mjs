// A repository of scripts as the TypeScript compiler sees it: its files, and where a specifier leads.
//
// Packages of the repository's workspaces are looked up by the compiler as if they were installed
// (linked into node_modules). The repository is the first argument of the program that imports this.
// The compiler comes from the folder named by TYPESCRIPT, else it is installed below the temporary
// folder.

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

export const ts = compiler();
export const repo = fs.realpathSync(process.argv[2]);
export const files = execFileSync('git', ['-C', repo, 'ls-files', '-z'], { maxBuffer: 1 << 28 })
  .toString().split('\0').filter((f) => f && fs.existsSync(path.join(repo, f)));
export const known = new Set(files);
export const inRepo = (file) => path.relative(repo, file);
export const isText = (file) => {
  const absolute = path.join(repo, file);
  return fs.lstatSync(absolute).isFile() && !fs.readFileSync(absolute).subarray(0, 8192).includes(0);
};
export const isScript = (file) => /\.[cm]?[jt]sx?$/.test(file);

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

export function member(name, folder) {
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

export function optionsOf(file) {
  const own = options(path.dirname(file));
  const { NodeNext, Node16, Bundler } = ts.ModuleResolutionKind;
  const kind = own.moduleResolution === NodeNext || own.moduleResolution === Node16
    ? own.moduleResolution : Bundler;
  return { ...own, allowJs: true, resolveJsonModule: true, moduleResolution: kind,
    module: kind === Bundler ? ts.ModuleKind.ESNext : own.module ?? ts.ModuleKind.NodeNext };
}

export function resolve(specifier, file) {
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
