import com.sun.source.tree.CompilationUnitTree;
import com.sun.source.tree.IdentifierTree;
import com.sun.source.tree.ImportTree;
import com.sun.source.tree.MemberSelectTree;
import com.sun.source.tree.Tree;
import com.sun.source.util.JavacTask;
import com.sun.source.util.TreePath;
import com.sun.source.util.TreePathScanner;
import com.sun.source.util.Trees;
import java.io.PrintStream;
import java.io.PrintWriter;
import java.io.Writer;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.HashMap;
import java.util.HashSet;
import java.util.List;
import java.util.Map;
import java.util.Set;
import java.util.TreeSet;
import javax.lang.model.element.Element;
import javax.lang.model.element.TypeElement;
import javax.lang.model.type.TypeKind;
import javax.tools.Diagnostic;
import javax.tools.JavaFileObject;
import javax.tools.StandardJavaFileManager;
import javax.tools.ToolProvider;

/**
 * Which Java file names a type of which other one, as javac attributes the sources: prints
 * "source TAB target" lines, and "unseen TAB path" on stderr for files that it does not judge:
 * module declarations, sources of other languages, and of files that declare the same class all but
 * the first.
 *
 * <p>Usage: java java_truth.java REPOSITORY. No library is on the class path; what stays
 * unresolved for that is outside of the repository.
 */
public class JavaTruth {
  public static void main(String[] args) throws Exception {
    Path root = Path.of(args[0]).toRealPath();
    List<Path> files = new ArrayList<>();
    Set<String> seen = new HashSet<>();
    for (String path : tracked(root, "*.java")) {
      Path file = root.resolve(path);
      boolean judged = !path.endsWith("module-info.java") && seen.add(identity(file));
      if (judged) files.add(file);
      if (!judged) System.err.println("unseen\t" + path);
    }
    for (String path : tracked(root, "*.kt")) System.err.println("unseen\t" + path);
    var compiler = ToolProvider.getSystemJavaCompiler();
    StandardJavaFileManager manager =
        compiler.getStandardFileManager(null, null, StandardCharsets.UTF_8);
    List<String> options =
        List.of("-proc:none", "-XDshould-stop.ifError=FLOW", "-cp", "", "-Xmaxerrs", "1");
    JavacTask task =
        (JavacTask)
            compiler.getTask(
                new PrintWriter(Writer.nullWriter()),
                manager,
                (Diagnostic<? extends JavaFileObject> ignored) -> {},
                options,
                null,
                manager.getJavaFileObjectsFromPaths(files));
    List<CompilationUnitTree> units = new ArrayList<>();
    task.parse().forEach(units::add);
    task.analyze();
    print(root, units, Trees.instance(task));
  }

  private static List<String> tracked(Path root, String pattern) throws Exception {
    Process git = new ProcessBuilder("git", "-C", root.toString(), "ls-files", pattern).start();
    return git.inputReader(StandardCharsets.UTF_8)
        .lines()
        .filter(path -> Files.isRegularFile(root.resolve(path)))
        .toList();
  }

  /** The package and the file name: two files that share them declare the same class. */
  private static String identity(Path file) throws Exception {
    for (String line : Files.readString(file, StandardCharsets.ISO_8859_1).split("\n")) {
      if (line.startsWith("package ")) return line.replaceAll(";.*", "") + "." + file.getFileName();
    }
    return file.getFileName().toString();
  }

  private static void print(Path root, List<CompilationUnitTree> units, Trees trees) {
    Map<Element, String> declared = new HashMap<>();
    for (CompilationUnitTree unit : units) {
      for (Tree type : unit.getTypeDecls()) {
        Element element = trees.getElement(trees.getPath(unit, type));
        if (element != null) declared.put(element, pathOf(root, unit));
      }
    }
    PrintStream out = new PrintStream(System.out, false, StandardCharsets.UTF_8);
    for (CompilationUnitTree unit : units) {
      String source = pathOf(root, unit);
      Set<String> targets = new TreeSet<>();
      new Names(trees, unit, declared, targets).scan(unit, null);
      targets.remove(source);
      for (String target : targets) out.println(source + "\t" + target);
    }
    out.flush();
  }

  private static String pathOf(Path root, CompilationUnitTree unit) {
    return root.relativize(Path.of(unit.getSourceFile().toUri())).toString();
  }

  private static class Names extends TreePathScanner<Void, Void> {
    private final Trees trees;
    private final CompilationUnitTree unit;
    private final Map<Element, String> declared;
    private final Set<String> targets;
    private final Set<String> libraries = new HashSet<>();

    Names(
        Trees trees,
        CompilationUnitTree unit,
        Map<Element, String> declared,
        Set<String> targets) {
      this.trees = trees;
      this.unit = unit;
      this.declared = declared;
      this.targets = targets;
    }

    @Override
    public Void visitImport(ImportTree node, Void unused) {
      // A name imported from a library stays one, though javac looks elsewhere without it.
      if (node.getQualifiedIdentifier() instanceof MemberSelectTree name
          && !node.isStatic()
          && (trees.getElement(new TreePath(getCurrentPath(), name)) instanceof TypeElement type)
          && type.asType().getKind() == TypeKind.ERROR) {
        libraries.add(name.getIdentifier().toString());
      }
      return super.visitImport(node, unused);
    }

    @Override
    public Void visitIdentifier(IdentifierTree node, Void unused) {
      if (libraries.contains(node.getName().toString())) return null;
      take(node);
      return super.visitIdentifier(node, unused);
    }

    @Override
    public Void visitMemberSelect(MemberSelectTree node, Void unused) {
      take(node);
      return super.visitMemberSelect(node, unused);
    }

    private void take(Tree node) {
      // javac adds the types of lambda parameters that the source leaves out; they have no end.
      if (trees.getSourcePositions().getEndPosition(unit, node) == Diagnostic.NOPOS) return;
      Element element = trees.getElement(getCurrentPath());
      if (!(element instanceof TypeElement)) return;
      while (element != null && !declared.containsKey(element)) {
        element = element.getEnclosingElement();
      }
      if (element != null) targets.add(declared.get(element));
    }
  }
}
