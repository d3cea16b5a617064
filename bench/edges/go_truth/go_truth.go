// Prints which Go file uses what of which other one, "source TAB target" a line.
//
//	go run go_truth.go REPOSITORY
//
// Packages come from `go list -e` (offline, with the version line of go.mod lowered to what this
// toolchain understands); the files that it selects for this machine are type-checked, libraries left
// out. The truth: a file depends on each file that declares a package-level object that it uses, and
// by a blank import on the files of the package that declare init, or on all of them if none does.
// Files that are not built on this machine are named on stderr, "unseen TAB path".
package main

import (
	"bufio"
	"encoding/json"
	"fmt"
	"go/ast"
	"go/importer"
	"go/parser"
	"go/token"
	"go/types"
	"os"
	"os/exec"
	"path/filepath"
	"regexp"
	"sort"
	"strconv"
	"strings"
)

type listed struct {
	ImportPath, Dir, Name     string
	GoFiles, CgoFiles         []string
	TestGoFiles, XTestGoFiles []string
}

type edge struct{ source, target string }

var (
	repo     string
	fset     = token.NewFileSet()
	packages = map[string]*listed{}
	parsed   = map[string]*ast.File{}
	checked  = map[string]*types.Package{}
	fakes    = map[string]*types.Package{}
	std      = importer.ForCompiler(fset, "source", nil)
	truth    = map[edge]bool{}
)

var newer = regexp.MustCompile(`(?m)^(toolchain|godebug|tool|ignore)\b.*$`)
var version = regexp.MustCompile(`(?m)^go [0-9.a-z]+`)

func must(err error) {
	if err != nil {
		fmt.Fprintln(os.Stderr, err)
		os.Exit(1)
	}
}

func tracked() []string {
	out, err := exec.Command("git", "-C", repo, "ls-files", "-co", "--exclude-standard", "-z").Output()
	must(err)
	return strings.Split(strings.TrimRight(string(out), "\x00"), "\x00")
}

func list(modDir string) {
	text, err := os.ReadFile(filepath.Join(modDir, "go.mod"))
	must(err)
	lowered := version.ReplaceAll(newer.ReplaceAll(text, nil), []byte("go 1.19"))
	temp, err := os.MkdirTemp("", "mod")
	must(err)
	defer os.RemoveAll(temp)
	mod := filepath.Join(temp, "go.mod")
	must(os.WriteFile(mod, lowered, 0o600))
	command := exec.Command("go", "list", "-e", "-json=ImportPath,Dir,Name,GoFiles,CgoFiles,TestGoFiles,XTestGoFiles", "-modfile="+mod, "./...")
	command.Dir = modDir
	command.Env = append(os.Environ(), "GOFLAGS=-mod=mod", "GOPROXY=off", "GOWORK=off", "CGO_ENABLED=1")
	out, err := command.Output()
	if err != nil {
		fmt.Fprintln(os.Stderr, "go list:", modDir, err)
	}
	decoder := json.NewDecoder(strings.NewReader(string(out)))
	for decoder.More() {
		p := &listed{}
		must(decoder.Decode(p))
		if strings.HasPrefix(p.Dir, repo) {
			packages[p.ImportPath] = p
		}
	}
}

func files(p *listed, names ...[]string) []*ast.File {
	var all []*ast.File
	for _, group := range names {
		for _, name := range group {
			path := filepath.Join(p.Dir, name)
			if parsed[path] == nil {
				file, _ := parser.ParseFile(fset, path, nil, parser.SkipObjectResolution)
				if file == nil {
					continue
				}
				parsed[path] = file
			}
			all = append(all, parsed[path])
		}
	}
	return all
}

type importing struct{ own map[string]*types.Package }

func (i importing) Import(path string) (*types.Package, error) {
	if p := i.own[path]; p != nil {
		return p, nil
	}
	if p := packages[path]; p != nil {
		return check(p), nil
	}
	if fakes[path] == nil {
		if first := strings.SplitN(path, "/", 2)[0]; !strings.Contains(first, ".") {
			if p, err := std.Import(path); err == nil {
				fakes[path] = p
				return p, nil
			}
		}
		name := filepath.Base(path)
		fakes[path] = types.NewPackage(path, name)
		fakes[path].MarkComplete()
	}
	return fakes[path], nil
}

func typecheck(path string, all []*ast.File, own map[string]*types.Package) *types.Package {
	info := &types.Info{Uses: map[*ast.Ident]types.Object{}}
	config := types.Config{Error: func(error) {}, Importer: importing{own}, FakeImportC: true}
	p, _ := config.Check(path, fset, all, info)
	for id, object := range info.Uses {
		if object.Pkg() == nil || object.Parent() != object.Pkg().Scope() {
			continue
		}
		add(edge{fset.Position(id.Pos()).Filename, fset.Position(object.Pos()).Filename})
	}
	for _, file := range all {
		skipped(file, own, info)
	}
	return p
}

// Packages named where the checker did not look, because a library around them is missing, are looked
// up by name.
func skipped(file *ast.File, own map[string]*types.Package, info *types.Info) {
	imported := map[string]*types.Package{}
	for _, each := range file.Imports {
		path, _ := strconv.Unquote(each.Path.Value)
		if packages[path] == nil {
			continue
		}
		target, _ := importing{own}.Import(path)
		name := target.Name()
		if each.Name != nil {
			name = each.Name.Name
		}
		imported[name] = target
	}
	use := func(id *ast.Ident, object types.Object) {
		if object != nil {
			add(edge{fset.Position(id.Pos()).Filename, fset.Position(object.Pos()).Filename})
		}
	}
	ast.Inspect(file, func(node ast.Node) bool {
		selector, ok := node.(*ast.SelectorExpr)
		if !ok {
			return true
		}
		id, ok := selector.X.(*ast.Ident)
		if ok && info.Uses[id] == nil && imported[id.Name] != nil {
			use(id, imported[id.Name].Scope().Lookup(selector.Sel.Name))
		}
		return true
	})
}

func add(e edge) {
	source, err1 := filepath.Rel(repo, e.source)
	target, err2 := filepath.Rel(repo, e.target)
	if err1 == nil && err2 == nil && source != target && !strings.HasPrefix(target, "..") {
		truth[edge{source, target}] = true
	}
}

func check(p *listed) *types.Package {
	if done, found := checked[p.ImportPath]; found {
		if done == nil {
			return types.NewPackage(p.ImportPath, p.Name)
		}
		return done
	}
	checked[p.ImportPath] = nil
	checked[p.ImportPath] = typecheck(p.ImportPath, files(p, p.GoFiles, p.CgoFiles), nil)
	return checked[p.ImportPath]
}

func checkTests(p *listed) {
	if len(p.TestGoFiles) > 0 {
		typecheck(p.ImportPath, files(p, p.GoFiles, p.CgoFiles, p.TestGoFiles), nil)
	}
	if len(p.XTestGoFiles) > 0 {
		inner := typecheck(p.ImportPath, files(p, p.GoFiles, p.CgoFiles, p.TestGoFiles), nil)
		typecheck(p.ImportPath+"_test", files(p, p.XTestGoFiles), map[string]*types.Package{p.ImportPath: inner})
	}
}

func declaresInit(file *ast.File) bool {
	for _, declaration := range file.Decls {
		if f, ok := declaration.(*ast.FuncDecl); ok && f.Recv == nil && f.Name.Name == "init" {
			return true
		}
	}
	return false
}

func blankImports() {
	for path, file := range parsed {
		for _, each := range file.Imports {
			target, _ := strconv.Unquote(each.Path.Value)
			p := packages[target]
			if p == nil || each.Name == nil || each.Name.Name != "_" {
				continue
			}
			all := files(p, p.GoFiles, p.CgoFiles)
			var chosen []*ast.File
			for _, f := range all {
				if declaresInit(f) {
					chosen = append(chosen, f)
				}
			}
			if chosen == nil {
				chosen = all
			}
			for _, f := range chosen {
				add(edge{path, fset.Position(f.Pos()).Filename})
			}
		}
	}
}

func printEdges() {
	lines := make([]string, 0, len(truth))
	for e := range truth {
		lines = append(lines, e.source+"\t"+e.target)
	}
	sort.Strings(lines)
	out := bufio.NewWriter(os.Stdout)
	defer out.Flush()
	for _, line := range lines {
		fmt.Fprintln(out, line)
	}
}

func main() {
	var err error
	repo, err = filepath.EvalSymlinks(os.Args[1])
	must(err)
	repo, _ = filepath.Abs(repo)
	all := tracked()
	for _, path := range all {
		if filepath.Base(path) == "go.mod" {
			list(filepath.Join(repo, filepath.Dir(path)))
		}
	}
	var paths []string
	for path := range packages {
		paths = append(paths, path)
	}
	sort.Strings(paths)
	for _, path := range paths {
		check(packages[path])
	}
	for _, path := range paths {
		checkTests(packages[path])
	}
	blankImports()
	for _, path := range all {
		if strings.HasSuffix(path, ".go") && parsed[filepath.Join(repo, path)] == nil {
			fmt.Fprintln(os.Stderr, "unseen\t"+path)
		}
	}
	printEdges()
}
