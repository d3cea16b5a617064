import com.sun.source.tree.*;
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
import javax.lang.model.element.ElementKind;
import javax.lang.model.element.ExecutableElement;
import javax.lang.model.element.Modifier;
import javax.lang.model.element.TypeElement;
import javax.tools.Diagnostic;
import javax.tools.JavaFileObject;
import javax.tools.ToolProvider;

/**
 * Who names which type or function of the repository in which role, as javac attributes the
 * sources: prints "source TAB role TAB target TAB name" lines, and "unseen TAB path" on stderr for
 * files that it does not judge: module declarations, sources of other languages, and of files that
 * declare the same class all but the first.
 *
 * <p>Usage: java java_truth.java REPOSITORY. No library is on the class path; what stays
 * unresolved for that is outside of the repository. Of calls it prints those that need no type of a
 * value: of static methods, and of methods of the types around the place.
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
    var manager = compiler.getStandardFileManager(null, null, StandardCharsets.UTF_8);
    var options =
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
    Set<String> rows = new TreeSet<>();
    for (CompilationUnitTree unit : units) {
      new Roles(trees, unit, declared, pathOf(root, unit), rows).scan(unit, null);
    }
    PrintStream out = new PrintStream(System.out, false, StandardCharsets.UTF_8);
    rows.forEach(out::println);
    out.flush();
  }

  private static String pathOf(Path root, CompilationUnitTree unit) {
    return root.relativize(Path.of(unit.getSourceFile().toUri())).toString();
  }

  private static class Roles extends TreePathScanner<Void, Void> {
    private final Trees trees;
    private final CompilationUnitTree unit;
    private final Map<Element, String> declared;
    private final String source;
    private final Set<String> rows;
    private Tree thrown;

    Roles(
        Trees trees,
        CompilationUnitTree unit,
        Map<Element, String> declared,
        String source,
        Set<String> rows) {
      this.trees = trees;
      this.unit = unit;
      this.declared = declared;
      this.source = source;
      this.rows = rows;
    }

    private Element elementOf(Tree tree) {
      return trees.getElement(new TreePath(getCurrentPath(), tree));
    }

    private void add(String role, Element element) {
      List<String> names = new ArrayList<>();
      Element at = element;
      for (; at != null && !declared.containsKey(at); at = at.getEnclosingElement()) {
        names.add(0, at.getSimpleName().toString());
        boolean member = at == element || at instanceof TypeElement;
        if (!member || at.getSimpleName().isEmpty()) return;
      }
      if (at == null) return;
      names.add(0, at.getSimpleName().toString());
      rows.add(String.join("\t", source, role, declared.get(at), String.join(".", names)));
    }

    private boolean isWritten(Tree tree) {
      return trees.getSourcePositions().getEndPosition(unit, tree) != Diagnostic.NOPOS;
    }

    /** The type in its role; its arguments are types. */
    private void type(Tree tree, String role) {
      if (tree == null || !isWritten(tree)) return;
      if (tree instanceof ParameterizedTypeTree generic) {
        type(generic.getType(), role);
        generic.getTypeArguments().forEach(argument -> type(argument, "type"));
      } else if (tree instanceof ArrayTypeTree array) {
        type(array.getType(), role);
      } else if (tree instanceof AnnotatedTypeTree annotated) {
        scan(annotated.getAnnotations(), null);
        type(annotated.getUnderlyingType(), role);
      } else if (tree instanceof UnionTypeTree union) {
        union.getTypeAlternatives().forEach(one -> type(one, role));
      } else if (tree instanceof IntersectionTypeTree all) {
        all.getBounds().forEach(one -> type(one, role));
      } else if (tree instanceof WildcardTree wildcard) {
        type(wildcard.getBound(), role);
      } else if (elementOf(tree) instanceof TypeElement element) {
        String precise = role;
        if (role.equals("extends")) {
          precise = element.getKind().isInterface() ? "implements" : "extends";
        }
        add(precise, element);
      }
    }

    @Override
    public Void visitImport(ImportTree node, Void unused) {
      return null;
    }

    @Override
    public Void visitClass(ClassTree node, Void unused) {
      if (!node.getSimpleName().isEmpty()) {
        type(node.getExtendsClause(), "extends");
        node.getImplementsClause().forEach(base -> type(base, "extends"));
      }
      scan(node.getModifiers(), null);
      scan(node.getTypeParameters(), null);
      return scan(node.getMembers(), null);
    }

    @Override
    public Void visitTypeParameter(TypeParameterTree node, Void unused) {
      node.getBounds().forEach(bound -> type(bound, "type"));
      return scan(node.getAnnotations(), null);
    }

    @Override
    public Void visitMethod(MethodTree node, Void unused) {
      if (!isWritten(node)) return null;
      type(node.getReturnType(), "type");
      node.getThrows().forEach(thrown -> type(thrown, "throws"));
      scan(node.getModifiers(), null);
      scan(node.getTypeParameters(), null);
      scan(node.getParameters(), null);
      scan(node.getDefaultValue(), null);
      return scan(node.getBody(), null);
    }

    @Override
    public Void visitVariable(VariableTree node, Void unused) {
      boolean caught = getCurrentPath().getParentPath().getLeaf() instanceof CatchTree;
      boolean matched = getCurrentPath().getParentPath().getLeaf() instanceof BindingPatternTree;
      Element element = trees.getElement(getCurrentPath());
      boolean constant = element != null && element.getKind() == ElementKind.ENUM_CONSTANT;
      if (!constant) type(node.getType(), caught || matched ? "catches" : "type");
      scan(node.getModifiers(), null);
      if (constant && node.getInitializer() instanceof NewClassTree made) {
        if (made.getClassBody() != null) scan(made.getClassBody().getMembers(), null);
        return scan(made.getArguments(), null);
      }
      return scan(node.getInitializer(), null);
    }

    @Override
    public Void visitTypeCast(TypeCastTree node, Void unused) {
      type(node.getType(), "type");
      return scan(node.getExpression(), null);
    }

    @Override
    public Void visitInstanceOf(InstanceOfTree node, Void unused) {
      if (node.getPattern() == null) type(node.getType(), "catches");
      scan(node.getExpression(), null);
      return scan(node.getPattern(), null);
    }

    @Override
    public Void visitNewArray(NewArrayTree node, Void unused) {
      type(node.getType(), "type");
      scan(node.getDimensions(), null);
      return scan(node.getInitializers(), null);
    }

    @Override
    public Void visitNewClass(NewClassTree node, Void unused) {
      String role = node.getClassBody() != null ? "extends" : "constructs";
      if (node == thrown) role = "throws";
      type(node.getIdentifier(), role);
      node.getTypeArguments().forEach(argument -> type(argument, "type"));
      scan(node.getEnclosingExpression(), null);
      scan(node.getArguments(), null);
      return node.getClassBody() == null ? null : scan(node.getClassBody().getMembers(), null);
    }

    @Override
    public Void visitThrow(ThrowTree node, Void unused) {
      thrown = node.getExpression();
      if (thrown instanceof TypeCastTree cast) type(cast.getType(), "throws");
      return super.visitThrow(node, unused);
    }

    @Override
    public Void visitMethodInvocation(MethodInvocationTree node, Void unused) {
      String role = node == thrown ? "throws" : "calls";
      ExpressionTree select = node.getMethodSelect();
      node.getTypeArguments().forEach(argument -> type(argument, "type"));
      boolean known = elementOf(select) instanceof ExecutableElement;
      ExecutableElement method = known ? (ExecutableElement) elementOf(select) : null;
      boolean plain = known && method.getKind() == ElementKind.METHOD && !isMade(method);
      if (select instanceof MemberSelectTree member) {
        boolean self = member.getExpression().toString().equals("this");
        boolean ofType = isType(member);
        if (plain && (self || (ofType && method.getModifiers().contains(Modifier.STATIC)))) {
          add(role, method);
        }
        if (!ofType) scan(member.getExpression(), null);
      } else if (plain) {
        add(role, method);
      }
      return scan(node.getArguments(), null);
    }

    private boolean isType(MemberSelectTree member) {
      TreePath path = new TreePath(new TreePath(getCurrentPath(), member), member.getExpression());
      return trees.getElement(path) instanceof TypeElement
          && !member.getExpression().toString().matches("(.*\\.)?(this|super)");
    }

    /** Methods that no one writes. */
    private static boolean isMade(ExecutableElement method) {
      String name = method.getSimpleName().toString();
      return method.getEnclosingElement().getKind() == ElementKind.ENUM
          && (name.equals("values") || name.equals("valueOf"));
    }

    @Override
    public Void visitAnnotation(AnnotationTree node, Void unused) {
      type(node.getAnnotationType(), "annotates");
      return scan(node.getArguments(), null);
    }

    @Override
    public Void visitParameterizedType(ParameterizedTypeTree node, Void unused) {
      return null;
    }
  }
}
