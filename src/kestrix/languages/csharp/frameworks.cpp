#include "kestrix/languages/frameworks.h"

namespace kestrix::index {

std::span<const FrameworkName> csharp_frameworks();

namespace {

constexpr FrameworkName kNames[] = {
    {"dotnet", Known::kErrorBase, "Exception"},
    {"dotnet", Known::kErrorBase, "ApplicationException"},
    {"dotnet", Known::kErrorBase, "SystemException"},
    {"dotnet", Known::kErrorBase, "InvalidOperationException"},
    {"dotnet", Known::kErrorBase, "ArgumentException"},
    {"aspnet", Known::kErrorHandler, "IExceptionHandler"},
    {"aspnet", Known::kErrorHandler, "IExceptionFilter"},
    {"aspnet", Known::kErrorHandler, "ExceptionFilterAttribute"},
    {"efcore", Known::kModelBase, "DbContext"},
    {"efcore", Known::kModelBase, "IdentityDbContext"},
    {"efcore", Known::kModelBase, "IdentityUser"},
    {"efcore", Known::kModelList, "DbSet"},
    {"efcore", Known::kModelMarker, "Table"},
    {"efcore", Known::kModelMarker, "Key"},
    {"dotnet", Known::kSettingsCall, "Configure"},
    {"dotnet", Known::kSettingsCall, "GetSection"},
    {"dotnet", Known::kSettingsCall, "GetConnectionString"},
    {"dotnet", Known::kSettingsCall, "Bind"},
    {"dotnet", Known::kSettingsCall, "AddOptions"},
    {"dotnet", Known::kSettingsCall, "BindConfiguration"},
    {"dotnet", Known::kSettingsCall, "GetValue"},
    {"dotnet", Known::kSettingsCall, "GetRequiredSection"},
    {"dotnet", Known::kLoader, "Assembly.Load"},
    {"dotnet", Known::kLoader, "Assembly.LoadFrom"},
    {"dotnet", Known::kLoader, "Activator.CreateInstance"},
    {"dotnet", Known::kLoader, "Type.GetType"},
    {"aspnet", Known::kHandlerBase, "Controller"},
    {"aspnet", Known::kHandlerBase, "ControllerBase"},
    {"aspnet", Known::kHandlerBase, "PageModel"},
    {"aspnet", Known::kHandlerBase, "Hub"},
    {"aspnet", Known::kHandlerBase, "BackgroundService"},
    {"aspnet", Known::kHandlerBase, "IHostedService"},
    {"aspnet", Known::kHandlerBase, "EndpointBaseAsync"},
    {"aspnet", Known::kHandlerBase, "ViewComponent"},
    {"aspnet", Known::kHandlerBase, "IRequestHandler"},
    {"aspnet", Known::kHandlerBase, "INotificationHandler"},
    {"aspnet", Known::kHandlerBase, "IConsumer"},
    {"aspnet", Known::kHandlerBase, "Endpoint"},
    {"aspnet", Known::kHandlerBase, "IEndpoint"},
    {"aspnet", Known::kHandlerMarker, "ApiController"},
    {"aspnet", Known::kHandlerPath, "**/Pages/**/*.cshtml.cs"},
    {"aspnet", Known::kHandlerPath, "**/Controllers/**/*.cs"},
    {"aspnet", Known::kStartPath, "**/Program.cs"},
    {"aspnet", Known::kStartPath, "**/Startup.cs"},
    {"dotnet", Known::kSettingsPath, "**/appsettings.json"},
    {"aspnet", Known::kTestBase, "WebApplicationFactory"},
    {"xunit", Known::kTestBase, "IClassFixture"},
    {"xunit", Known::kTestBase, "IAsyncLifetime"},
};

}  // namespace

std::span<const FrameworkName> csharp_frameworks() { return kNames; }

}  // namespace kestrix::index
