#include "kestrix/languages/frameworks.h"

namespace kestrix::index {

std::span<const FrameworkName> php_frameworks();

namespace {

constexpr FrameworkName kNames[] = {
    {"php", Known::kErrorBase, "Exception"},
    {"php", Known::kErrorBase, "RuntimeException"},
    {"php", Known::kErrorBase, "Error"},
    {"php", Known::kErrorBase, "Throwable"},
    {"php", Known::kErrorBase, "InvalidArgumentException"},
    {"php", Known::kErrorBase, "LogicException"},
    {"php", Known::kErrorBase, "DomainException"},
    {"php", Known::kErrorBase, "HttpException"},
    {"laravel", Known::kErrorHandler, "Foundation.Exceptions.Handler"},
    {"laravel", Known::kErrorHandler, "ExceptionHandler"},
    {"laravel", Known::kModelBase, "Eloquent.Model"},
    {"laravel", Known::kModelBase, "Foundation.Auth.User"},
    {"laravel", Known::kModelBase, "Illuminate.Database.Eloquent.Relations.Pivot"},
    {"doctrine", Known::kModelMarker, "ORM.Entity"},
    {"doctrine", Known::kModelMarker, "Entity"},
    {"doctrine", Known::kModelMarker, "Document"},
    {"php", Known::kSettingsCall, "env"},
    {"php", Known::kSettingsCall, "config"},
    {"laravel", Known::kHandlerBase, "Console.Command"},
    {"laravel", Known::kHandlerBase, "Routing.Controller"},
    {"laravel", Known::kHandlerBase, "ShouldQueue"},
    {"laravel", Known::kHandlerBase, "FormRequest"},
    {"laravel", Known::kHandlerBase, "Mailable"},
    {"laravel", Known::kHandlerBase, "Notification"},
    {"symfony", Known::kHandlerBase, "AbstractController"},
    {"symfony", Known::kHandlerBase, "Console.Command.Command"},
    {"symfony", Known::kHandlerMarker, "Route"},
    {"symfony", Known::kHandlerMarker, "AsCommand"},
    {"symfony", Known::kHandlerMarker, "AsMessageHandler"},
    {"symfony", Known::kHandlerMarker, "AsEventListener"},
    {"laravel", Known::kHandlerPath, "**/Http/Controllers/**/*.php"},
    {"laravel", Known::kHandlerPath, "**/Console/Commands/**/*.php"},
    {"laravel", Known::kHandlerPath, "**/Jobs/**/*.php"},
    {"laravel", Known::kHandlerPath, "**/Listeners/**/*.php"},
    {"laravel", Known::kStartPath, "bootstrap/app.php"},
    {"laravel", Known::kStartPath, "public/index.php"},
    {"laravel", Known::kStartPath, "artisan"},
    {"laravel", Known::kStartPath, "**/Kernel.php"},
    {"laravel", Known::kStartPath, "**/RouteServiceProvider.php"},
    {"phpunit", Known::kTestBase, "PHPUnit.Framework.TestCase"},
    {"laravel", Known::kTestBase, "Foundation.Testing.TestCase"},
};

}  // namespace

std::span<const FrameworkName> php_frameworks() { return kNames; }

}  // namespace kestrix::index
