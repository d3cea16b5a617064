// What shows that a file is about errors, each beside what only looks like it.

#include "kestrix/host/errors/error_signals.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/host_rules/answered_repository.h"
#include "tests/host_rules/signal_case.h"

namespace kestrix {
namespace {

using Files = AnsweredRepository::Files;

using Case = SignalCase;

Files go(Files files) {
  files.emplace_back("go.mod", "module shop\n\ngo 1.22\n");
  return files;
}

Files rust(Files files) {
  files.emplace_back("Cargo.toml", "[package]\nname = \"shop\"\nversion = \"0.1.0\"\n");
  return files;
}

// An error that others extend, in files of their own or in its own.
Files family(std::string_view path) {
  return repeated(3, path, "from shop.base import Fault\n\n\nclass Fault{0}(Fault):\n    pass\n",
                  {{"shop/base.py",
                    "class Fault(Exception):\n    pass\n\n\n"
                    "class Missing(Fault):\n    pass\n"}});
}

// Bases of errors that make their texts with one helper, and who else uses it.
Files helped(std::size_t others) {
  Files files{{"src/main/java/shop/Trace.java",
               "package shop;\npublic class Trace {\n  public static void cut(Object o) {}\n}\n"}};
  for (const std::string base : {"Fault", "Lapse"}) {
    files.emplace_back("src/main/java/shop/" + base + ".java",
                       "package shop;\npublic class " + base +
                           " extends RuntimeException {\n  public " + base +
                           "() { Trace.cut(this); }\n}\n");
    files = repeated(2, "src/main/java/shop/" + base + "{0}.java",
                     "package shop;\npublic class " + base + "{0} extends " + base + " {{}}\n",
                     std::move(files));
  }
  return repeated(others, "src/main/java/shop/Part{0}.java",
                  "package shop;\npublic class Part{0} {{\n  void a() {{ Trace.cut(this); }}\n}}\n",
                  std::move(files));
}

// A function over errors of the product, and what stands in it.
Files faults(std::string_view body) {
  return {{"shop/faults.py",
           "class Missing(Exception):\n    pass\n\n\nclass Taken(Exception):\n    pass\n\n\n"
           "class Broken(Exception):\n    pass\n"},
          {"shop/desk.py",
           "from shop.faults import Broken, Missing, Taken\n\n\ndef go(a):\n" + std::string(body)}};
}

std::string lines(std::size_t count, const std::string& line) {
  std::string text;
  for (std::size_t at = 0; at < count; ++at) text += line;
  return text;
}

// A controller that says what becomes of errors, and what extends it.
Files controllers(std::string_view body) {
  return repeated(3, "app/controllers/desk{0}_controller.rb",
                  "class Desk{0}Controller < BaseController\n  def show\n    1\n  end\nend\n",
                  {{"app/controllers/base_controller.rb",
                    "class BaseController\n" + std::string(body) + "end\n"}});
}

// Routes, each of which ends with a function of one file.
Files answers(std::size_t users, std::string_view made) {
  std::string functions;
  for (const std::string name : {"done", "missing", "broken"}) {
    functions += "export function " + name + "() {\n  return " + std::string(made) + ";\n}\n";
  }
  return repeated(users, "src/routes/{0}.ts",
                  "import {{ missing }} from '../answers';\nexport function get() {{\n"
                  "  return missing();\n}}\n",
                  {{"src/answers.ts", functions}});
}

Files c_program(std::string_view declared, std::string_view defined, std::string_view call) {
  return repeated(
      5, "part_{0}.c",
      "#include \"report.h\"\nvoid part_{0}(int a) {{\n  if (a) " + std::string(call) + ";\n}}\n",
      {{"report.h", std::string(declared)}, {"report.c", std::string(defined)}});
}

Files event(std::string_view name, std::string_view declared) {
  return {{"src/main/kotlin/shop/Told.kt", "package shop\n\n" + std::string(declared)},
          {"src/main/kotlin/desk/Desk.kt", "package desk\n\nimport shop." + std::string(name) +
                                               "\n\nfun go() = " + std::string(name) + "()\n"}};
}

std::vector<Case> definitions() {
  return {
      {"BasesOfErrorsElsewhere", family("shop/{0}.py"), "shop/base.py", "error_base", true},
      {"BasesOfErrorsBesideThem",
       {family("shop/{0}.py").front()},
       "shop/base.py",
       "error_base",
       false},
      {"WhatBasesAreMadeWith", helped(0), "src/main/java/shop/Trace.java", "makes_base_errors",
       true},
      {"WhatAllAreMadeWith", helped(9), "src/main/java/shop/Trace.java", "makes_base_errors",
       false},
      {"ErrorsThatAnswerRequests",
       {{"composer.json", R"({"autoload": {"psr-4": {"App\\": "app/"}}})"},
        {"app/Lapse.php",
         "<?php\nnamespace App;\nuse Illuminate\\Contracts\\Support\\Responsable;\n"
         "class Lapse extends \\Exception implements Responsable {}\n"}},
       "app/Lapse.php",
       "answers_itself",
       true},
      {"TypesThatAnswerRequests",
       rust({{"src/lib.rs",
              "use axum::response::IntoResponse;\n\npub struct Page;\n\n"
              "impl IntoResponse for Page {\n    fn into_response(self) {}\n}\n"}}),
       "src/lib.rs", "answers_itself", false},
      {"TypesThatAnswerRequestsAreNoHandlers",
       rust({{"src/lib.rs",
              "use axum::response::IntoResponse;\n\npub struct Page;\n\n"
              "impl IntoResponse for Page {\n    fn into_response(self) {}\n}\n"}}),
       "src/lib.rs", "error_handler", false},
  };
}

std::vector<Case> uses() {
  return {
      {"ErrorsToldApart",
       go({{"store/store.go",
            "package store\n\nimport \"errors\"\n\nvar ErrMissing = errors.New(\"missing\")\n"},
           {"web/web.go",
            "package web\n\nimport (\n\t\"errors\"\n\t\"shop/store\"\n)\n\n"
            "func Code(err error) int {\n\tif errors.Is(err, store.ErrMissing) {\n"
            "\t\treturn 404\n\t}\n\treturn 500\n}\n"}}),
       "web/web.go", "tells_errors_apart", true},
      {"ErrorsInAListOfTheWholeFile",
       {{"src/Faults.cs",
         "using System;\nnamespace Shop;\npublic class FaultException : Exception {}\n"},
        {"src/Types.cs",
         "using System.Runtime.CompilerServices;\nusing Shop;\n"
         "[assembly: TypeForwardedTo(typeof(FaultException))]\n"}},
       "src/Types.cs",
       "tells_errors_apart",
       false},
      {"OthersErrorsToldApart",
       faults("    try:\n        a()\n    except KeyError:\n        return 1\n"
              "    except ValueError:\n        return 2\n"),
       "shop/desk.py", "tells_others_apart", true},
      {"OneOfOthersErrorsCaught",
       faults("    try:\n        a()\n    except KeyError:\n        return 1\n"), "shop/desk.py",
       "tells_others_apart", false},
      {"ManyKindsOfErrorsMade",
       faults("    if a == 1:\n        raise Missing()\n    if a == 2:\n        raise Taken()\n"
              "    raise Broken()\n"),
       "shop/desk.py", "makes_errors", true},
      {"FewKindsOfErrorsMade",
       faults("    if a == 1:\n        raise Missing()\n    raise Broken()\n"), "shop/desk.py",
       "makes_errors", false},
      {"ErrorsThrownOften", faults(lines(5, "    if a:\n        raise Missing()\n")),
       "shop/desk.py", "throws_often", true},
      {"ErrorsThrownNowAndThen", faults(lines(4, "    if a:\n        raise Missing()\n")),
       "shop/desk.py", "throws_often", false},
      {"OthersErrorsThrownBesideOwnOnes", faults(lines(5, "    if a:\n        raise KeyError()\n")),
       "shop/desk.py", "throws_others", false},
  };
}

std::vector<Case> handlers() {
  const std::string exchange =
      "export function onError(error, context) {\n  return context.text(error);\n}\n";
  return {
      {"HandlersByCall",
       controllers("  rescue_from KeyError, with: :lost\n\n  def lost\n    1\n  end\n"),
       "app/controllers/base_controller.rb", "error_handler", true},
      {"HandlersForMany",
       controllers("  rescue_from KeyError, with: :lost\n\n  def lost\n    1\n  end\n"),
       "app/controllers/base_controller.rb", "handles_for_many", true},
      {"BasesThatHandleNothing", controllers("  def lost\n    1\n  end\n"),
       "app/controllers/base_controller.rb", "handles_for_many", false},
      {"HandlersByAnnotation",
       {{"src/main/java/shop/Advice.java",
         "package shop;\nimport org.springframework.web.bind.annotation.RestControllerAdvice;\n"
         "@RestControllerAdvice\npublic class Advice {}\n"}},
       "src/main/java/shop/Advice.java",
       "error_handler",
       true},
      {"HandlersByBaseType",
       {{"src/Faults.cs",
         "using Microsoft.AspNetCore.Mvc.Filters;\nnamespace Shop;\n"
         "public class Faults : IExceptionFilter {\n"
         "  public void OnException(ExceptionContext context) {}\n}\n"}},
       "src/Faults.cs",
       "error_handler",
       true},
      {"HandlersOfSomethingElse",
       {{"src/Orders.cs",
         "using MediatR;\nnamespace Shop;\n"
         "public class Orders : IRequestHandler<Order> {}\npublic class Order {}\n"}},
       "src/Orders.cs",
       "error_handler",
       false},
      {"HooksByName",
       {{"src/Edge.tsx",
         "import { Component } from 'react';\nexport class Edge extends Component {\n"
         "  componentDidCatch(fault) {}\n  render() { return null; }\n}\n"}},
       "src/Edge.tsx",
       "error_hook",
       true},
      {"HooksThatTheProductCalls",
       {{"src/pay.ts", "export function handleError(fault) {\n  return fault;\n}\n"},
        {"src/app.ts",
         "import { handleError } from './pay';\nexport function go(a) {\n"
         "  return handleError(a);\n}\n"}},
       "src/pay.ts",
       "error_hook",
       false},
      {"FunctionsHandedOver",
       {{"src/faults.ts", exchange},
        {"src/app.ts",
         "import { onError } from './faults';\nexport function build(app) {\n"
         "  app.use(onError);\n}\n"}},
       "src/faults.ts",
       "handed_errors",
       true},
      {"WordsOfWhatIsWrittenDown",
       {{"shop/notes.py", "def log_error(text):\n    return text\n"},
        {"shop/a.py", "from shop.notes import log_error\n\ndef a():\n    log_error('a')\n"},
        {"shop/b.py", "from shop.notes import log_error\n\ndef b():\n    log_error('b')\n"}},
       "shop/notes.py",
       "speaks_of_errors",
       false},
      {"WordsOfErrors",
       {{"shop/notes.py", "def answer_error(text):\n    return text\n"},
        {"shop/a.py", "from shop.notes import answer_error\n\ndef a():\n    answer_error('a')\n"},
        {"shop/b.py", "from shop.notes import answer_error\n\ndef b():\n    answer_error('b')\n"}},
       "shop/notes.py",
       "speaks_of_errors",
       true},
      {"FunctionsCalled",
       {{"src/faults.ts", exchange},
        {"src/app.ts",
         "import { onError } from './faults';\nexport function build(app) {\n"
         "  onError(app, 1);\n}\n"}},
       "src/faults.ts",
       "handed_errors",
       false},
      {"FunctionsRegisteredForErrors",
       {{"shop/faults.py",
         "class Fault(Exception):\n    pass\n\n\ndef fault_exception_handler(request, fault):\n"
         "    return 500\n\n\ndef add_all(app):\n"
         "    app.add_exception_handler(Fault, fault_exception_handler)\n"}},
       "shop/faults.py",
       "handed_errors",
       true},
  };
}

std::vector<Case> endings() {
  const std::string ends =
      "#include <stdlib.h>\n#include \"report.h\"\n"
      "void give_up(const char *why) {\n  exit(1);\n}\n";
  return {
      {"AnswersByFewFunctions", answers(5, "Response.json(1)"), "src/answers.ts", "makes_answers",
       true},
      {"AnswersThatFewGive", answers(4, "Response.json(1)"), "src/answers.ts", "makes_answers",
       false},
      {"FunctionsThatAnswerNothing", answers(5, "String(1)"), "src/answers.ts", "makes_answers",
       false},
      {"ProgramsEnd", c_program("void give_up(const char *why);\n", ends, "give_up(\"a\")"),
       "report.c", "ends_program", true},
      {"LongFunctionsThatMayEndAProgram",
       c_program("void give_up(const char *why);\n",
                 "#include <stdlib.h>\n#include \"report.h\"\nvoid give_up(const char *why) {\n" +
                     lines(30, "  work();\n") + "  exit(1);\n}\n",
                 "give_up(\"a\")"),
       "report.c", "ends_program", false},
  };
}

std::vector<Case> names() {
  return {
      {"MacrosThatAssert",
       c_program("#define shop_assert(c) ((c) ? 0 : stop())\nint stop(void);\n", "",
                 "shop_assert(a)"),
       "report.h", "speaks_of_errors", true},
      {"MacrosThatDoNot",
       c_program("#define shop_twice(c) ((c) * 2)\nint stop(void);\n", "", "shop_twice(a)"),
       "report.h", "speaks_of_errors", false},
      {"FunctionsThatFail", event("failWith", "fun failWith() = 1\n"),
       "src/main/kotlin/shop/Told.kt", "speaks_of_errors", true},
      {"EventsThatSomethingFailed", event("LoginFailed", "class LoginFailed\n"),
       "src/main/kotlin/shop/Told.kt", "speaks_of_errors", false},
      {"EventsAfterErrors", event("LoadFailureEvent", "class LoadFailureEvent\n"),
       "src/main/kotlin/shop/Told.kt", "speaks_of_errors", false},
      {"LevelsOfMessages", event("tellError", "fun tellError() = 1\n\nfun tellInfo() = 2\n"),
       "src/main/kotlin/shop/Told.kt", "speaks_of_errors", false},
      {"FunctionsForErrorsAlone",
       event("tellError", "fun tellError() = 1\n\nfun tellPlace() = 2\n"),
       "src/main/kotlin/shop/Told.kt", "speaks_of_errors", true},
      {"FilesOfNothingElse", event("ErrorText", "class ErrorText\n\nclass ErrorPlace\n"),
       "src/main/kotlin/shop/Told.kt", "devoted_to_errors", true},
      {"FilesOfManyThings", event("ErrorText", "class ErrorText\n\nclass Order\n\nclass Line\n"),
       "src/main/kotlin/shop/Told.kt", "devoted_to_errors", false},
  };
}

std::vector<Case> cases() {
  std::vector<Case> all;
  for (const auto& group : {definitions(), uses(), handlers(), endings(), names()}) {
    all.insert(all.end(), group.begin(), group.end());
  }
  return all;
}

class ErrorSignals : public testing::TestWithParam<Case> {};

TEST_P(ErrorSignals, TellFilesAboutErrorsFromTheirLikes) {
  expect_told(GetParam(), [](const WikiGenerator& generator) -> const ScoreSheet& {
    return generator.error_evidence().sheet;
  });
}

// Of those that define errors, the page's rule is given the ones that others need, not those that
// do the most with errors.
TEST(ErrorFiles, AreThoseWhoseErrorsOthersName) {
  Files files;
  for (const std::string name : {"a", "b", "c", "d", "e", "f"}) {
    std::string text = "from shop.base import Fault\n";
    for (const std::string kind : {"Lost", "Late", "Torn"}) {
      text += "\n\nclass " + kind + "(Fault):\n    pass\n";
    }
    text +=
        "\n\ndef go():\n    try:\n        a()\n    except KeyError:\n        raise Lost()\n"
        "    except ValueError:\n        raise Late()\n    except TypeError:\n"
        "        raise Torn()\n";
    files.emplace_back("shop/desk_" + name + ".py", text);
    files.emplace_back("shop/user_" + name + ".py",
                       "from shop.keys import Wrong\n\n\ndef go():\n    raise Wrong()\n");
  }
  files.emplace_back("shop/base.py", "class Fault(Exception):\n    pass\n");
  files.emplace_back("shop/keys.py",
                     "from shop.base import Fault\n\n\nclass Wrong(Fault):\n    pass\n");
  const AnsweredRepository repository(files);
  const auto given = paths_of(errors_answer(repository.generator()).files);
  EXPECT_THAT(given, testing::IsSupersetOf({"shop/base.py", "shop/keys.py"}));
}

INSTANTIATE_TEST_SUITE_P(Pages, ErrorSignals, testing::ValuesIn(cases()),
                         [](const auto& one) { return one.param.name; });

}  // namespace
}  // namespace kestrix
