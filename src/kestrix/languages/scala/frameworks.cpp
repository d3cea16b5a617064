#include "kestrix/languages/frameworks.h"

#include <vector>

namespace kestrix::index {

std::span<const FrameworkName> jvm_frameworks();
std::span<const FrameworkName> scala_frameworks();

namespace {

constexpr FrameworkName kNames[] = {
    {"scala", Known::kEndsProgram, "sys.exit"},
    {"scala", Known::kErrorBase, "ControlThrowable"},
    {"scala", Known::kErrorBase, "NoStackTrace"},
    {"scala", Known::kErrorBase, "NoSuchElementException"},
    {"akka", Known::kErrorBase, "AkkaException"},
    {"pekko", Known::kErrorBase, "PekkoException"},
    {"play", Known::kErrorBase, "PlayException"},
    {"spark", Known::kErrorBase, "SparkException"},
    {"akka", Known::kErrorHandler, "ExceptionHandler"},
    {"akka", Known::kErrorHandler, "RejectionHandler.newBuilder"},
    {"akka", Known::kErrorHandler, "OneForOneStrategy"},
    {"play", Known::kErrorHandler, "DefaultHttpErrorHandler"},
    {"play", Known::kErrorHandler, "HttpErrorHandler"},
    {"play", Known::kErrorHandler, "JsonHttpErrorHandler"},
    {"cats", Known::kErrorValue, "raiseError"},
    {"scala", Known::kErrorValue, "Future.failed"},
    {"scala", Known::kErrorValue, "sys.error"},
    {"zio", Known::kErrorValue, "ZIO.fail"},
    {"akka", Known::kResponse, "HttpResponse"},
    {"play", Known::kResponse, "BadRequest"},
    {"play", Known::kResponse, "Forbidden"},
    {"play", Known::kResponse, "InternalServerError"},
    {"play", Known::kResponse, "NotFound"},
    {"play", Known::kResponse, "Unauthorized"},
    {"scalatra", Known::kResponse, "halt"},
    {"slick", Known::kModelBase, "Table"},
    {"squeryl", Known::kModelBase, "KeyedEntity"},
    {"scalikejdbc", Known::kModelBase, "SQLSyntaxSupport"},
    {"skinny", Known::kModelBase, "SkinnyCRUDMapper"},
    {"slick", Known::kModelList, "TableQuery"},
    {"doobie", Known::kModelList, "Read.derived"},
    {"quill", Known::kModelList, "querySchema"},
    {"circe", Known::kRecordList, "deriveCodec"},
    {"circe", Known::kRecordList, "deriveDecoder"},
    {"circe", Known::kRecordList, "deriveEncoder"},
    {"jsoniter", Known::kRecordList, "JsonCodecMaker.make"},
    {"play", Known::kRecordList, "Json.format"},
    {"play", Known::kRecordList, "Json.reads"},
    {"play", Known::kRecordList, "Json.writes"},
    {"spray", Known::kRecordList, "jsonFormat"},
    {"upickle", Known::kRecordList, "macroRW"},
    {"zio", Known::kRecordList, "DeriveJsonCodec.gen"},
    {"play", Known::kSettingsCall, "Configuration.load"},
    {"pureconfig", Known::kSettingsCall, "ConfigSource.default"},
    {"pureconfig", Known::kSettingsCall, "loadConfig"},
    {"sbt", Known::kSettingsCall, "settingKey"},
    {"scala", Known::kSettingsCall, "sys.env"},
    {"scala", Known::kSettingsCall, "sys.props"},
    {"spark", Known::kSettingsCall, "ConfigBuilder"},
    {"zio", Known::kSettingsCall, "deriveConfig"},
    {"play", Known::kSettingsPath, "**/conf/application.conf"},
    {"lightbend", Known::kSettingsPath, "**/src/main/resources/reference.conf"},
    {"lightbend", Known::kSettingsPath, "**/src/main/resources/application.conf"},
    {"java", Known::kLoader, "ServiceLoader.load"},
    {"akka", Known::kHandlerBase, "AbstractActor"},
    {"akka", Known::kHandlerBase, "AbstractBehavior"},
    {"akka", Known::kHandlerBase, "Actor"},
    {"akka", Known::kHandlerBase, "EventSourcedBehavior"},
    {"akka", Known::kHandlerBase, "GraphStage"},
    {"akka", Known::kHandlerBase, "PersistentActor"},
    {"akka", Known::kHandlerBase, "HttpApp"},
    {"cats", Known::kHandlerBase, "IOApp"},
    {"cask", Known::kHandlerBase, "MainRoutes"},
    {"cask", Known::kHandlerBase, "cask.Routes"},
    {"finagle", Known::kHandlerBase, "TwitterServer"},
    {"finatra", Known::kHandlerBase, "HttpServer"},
    {"http4s", Known::kHandlerBase, "Http4sDsl"},
    {"play", Known::kHandlerBase, "AbstractController"},
    {"play", Known::kHandlerBase, "ActionBuilder"},
    {"play", Known::kHandlerBase, "BaseController"},
    {"play", Known::kHandlerBase, "Controller"},
    {"play", Known::kHandlerBase, "EssentialFilter"},
    {"play", Known::kHandlerBase, "InjectedController"},
    {"play", Known::kHandlerBase, "MessagesAbstractController"},
    {"play", Known::kHandlerBase, "SimpleRouter"},
    {"sbt", Known::kHandlerBase, "AutoPlugin"},
    {"scala", Known::kHandlerBase, "App"},
    {"scalatra", Known::kHandlerBase, "ScalatraFilter"},
    {"scalatra", Known::kHandlerBase, "ScalatraServlet"},
    {"zio", Known::kHandlerBase, "ZIOAppDefault"},
    {"cask", Known::kHandlerMarker, "cask.get"},
    {"cask", Known::kHandlerMarker, "cask.post"},
    {"scala", Known::kHandlerMarker, "main"},
    {"play", Known::kHandlerPath, "**/conf/routes"},
    {"play", Known::kHandlerPath, "**/conf/*.routes"},
    {"scala", Known::kStartPath, "**/Main.scala"},
    {"scala", Known::kStartPath, "**/*Main.scala"},
    {"scala", Known::kStartPath, "**/Boot.scala"},
    {"munit", Known::kTestBase, "munit.FunSuite"},
    {"munit", Known::kTestBase, "CatsEffectSuite"},
    {"play", Known::kTestBase, "PlaySpec"},
    {"scalacheck", Known::kTestBase, "Properties"},
    {"scalatest", Known::kTestBase, "AnyFeatureSpec"},
    {"scalatest", Known::kTestBase, "AnyFlatSpec"},
    {"scalatest", Known::kTestBase, "AnyFreeSpec"},
    {"scalatest", Known::kTestBase, "AnyFunSpec"},
    {"scalatest", Known::kTestBase, "AnyFunSuite"},
    {"scalatest", Known::kTestBase, "AnyWordSpec"},
    {"scalatest", Known::kTestBase, "AsyncFlatSpec"},
    {"scalatest", Known::kTestBase, "AsyncFunSuite"},
    {"scalatest", Known::kTestBase, "AsyncWordSpec"},
    {"scalatest", Known::kTestBase, "FlatSpec"},
    {"scalatest", Known::kTestBase, "FunSpec"},
    {"scalatest", Known::kTestBase, "FunSuite"},
    {"scalatest", Known::kTestBase, "WordSpec"},
    {"scalatra", Known::kTestBase, "ScalatraFunSuite"},
    {"specs2", Known::kTestBase, "mutable.Specification"},
    {"specs2", Known::kTestBase, "Specification"},
    {"utest", Known::kTestBase, "TestSuite"},
    {"weaver", Known::kTestBase, "SimpleIOSuite"},
    {"zio", Known::kTestBase, "ZIOSpecDefault"},
};

// What the platform gives, all of its languages know.
std::vector<FrameworkName> all_names() {
  std::vector<FrameworkName> all(std::begin(kNames), std::end(kNames));
  const auto platform = jvm_frameworks();
  all.insert(all.end(), platform.begin(), platform.end());
  return all;
}

}  // namespace

std::span<const FrameworkName> scala_frameworks() {
  static const std::vector<FrameworkName> kAll = all_names();
  return kAll;
}

}  // namespace kestrix::index
