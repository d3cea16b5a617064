#include "kestrix/languages/frameworks.h"

namespace kestrix::index {

std::span<const FrameworkName> jvm_frameworks();

namespace {

constexpr FrameworkName kNames[] = {
    {"spring", Known::kResponse, "ResponseEntity"},
    {"spring", Known::kResponse, "ProblemDetail"},
    {"java", Known::kEndsProgram, "System.exit"},
    {"java", Known::kErrorBase, "Exception"},
    {"java", Known::kErrorBase, "RuntimeException"},
    {"java", Known::kErrorBase, "Error"},
    {"java", Known::kErrorBase, "Throwable"},
    {"java", Known::kErrorBase, "AssertionError"},
    {"java", Known::kErrorBase, "IllegalStateException"},
    {"java", Known::kErrorBase, "IllegalArgumentException"},
    {"java", Known::kErrorBase, "IOException"},
    {"spring", Known::kErrorHandler, "ControllerAdvice"},
    {"spring", Known::kErrorHandler, "RestControllerAdvice"},
    {"spring", Known::kErrorHandler, "ExceptionHandler"},
    {"spring", Known::kErrorHandler, "ResponseEntityExceptionHandler"},
    {"jaxrs", Known::kErrorHandler, "ExceptionMapper"},
    {"java", Known::kErrorHandler, "UncaughtExceptionHandler"},
    {"jpa", Known::kModelMarker, "Entity"},
    {"jpa", Known::kModelMarker, "MappedSuperclass"},
    {"jpa", Known::kModelMarker, "Embeddable"},
    {"jpa", Known::kModelMarker, "Document"},
    {"jpa", Known::kModelMarker, "Table"},
    {"room", Known::kModelMarker, "androidx.room.Entity"},
    {"kotlin", Known::kRecordMarker, "Serializable"},
    {"kotlin", Known::kRecordMarker, "JsonClass"},
    {"spring", Known::kSettingsBase, "ConfigurationProperties"},
    {"java", Known::kLoader, "ServiceLoader.load"},
    {"java", Known::kLoader, "Class.forName"},
    {"java", Known::kLoader, "forName"},
    {"java", Known::kLoader, "loadClass"},
    {"spring", Known::kSettingsCall, "Value"},
    {"spring", Known::kHandlerMarker, "RestController"},
    {"spring", Known::kHandlerMarker, "Controller"},
    {"spring", Known::kHandlerMarker, "KafkaListener"},
    {"spring", Known::kHandlerMarker, "EventListener"},
    {"spring", Known::kHandlerMarker, "Scheduled"},
    {"spring", Known::kHandlerMarker, "RabbitListener"},
    {"spring", Known::kHandlerMarker, "GetMapping"},
    {"spring", Known::kHandlerMarker, "PostMapping"},
    {"jaxrs", Known::kHandlerMarker, "Path"},
    {"android", Known::kHandlerBase, "Activity"},
    {"android", Known::kHandlerBase, "AppCompatActivity"},
    {"android", Known::kHandlerBase, "ComponentActivity"},
    {"android", Known::kHandlerBase, "Fragment"},
    {"android", Known::kHandlerBase, "Service"},
    {"android", Known::kHandlerBase, "BroadcastReceiver"},
    {"android", Known::kHandlerBase, "Worker"},
    {"android", Known::kHandlerBase, "CoroutineWorker"},
    {"android", Known::kHandlerBase, "ViewModel"},
    {"picocli", Known::kHandlerMarker, "picocli.CommandLine.Command"},
    {"spring", Known::kStartPath, "**/*Application.java"},
    {"spring", Known::kStartPath, "**/*Application.kt"},
    {"junit", Known::kTestBase, "TestCase"},
    {"spring", Known::kSettingsPath, "**/src/main/resources/application.properties"},
    {"spring", Known::kSettingsPath, "**/src/main/resources/application.yml"},
    {"spring", Known::kSettingsPath, "**/src/main/resources/application.yaml"},
    {"ktor", Known::kSettingsPath, "**/src/main/resources/application.conf"},
};

}  // namespace

std::span<const FrameworkName> jvm_frameworks() { return kNames; }

}  // namespace kestrix::index
