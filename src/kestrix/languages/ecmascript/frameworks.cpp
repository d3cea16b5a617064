#include "kestrix/languages/frameworks.h"

namespace kestrix::index {

std::span<const FrameworkName> ecmascript_frameworks();

namespace {

constexpr FrameworkName kNames[] = {
    {"javascript", Known::kErrorBase, "Error"},
    {"javascript", Known::kErrorBase, "TypeError"},
    {"javascript", Known::kErrorBase, "RangeError"},
    {"javascript", Known::kErrorBase, "HttpException"},
    {"javascript", Known::kErrorBase, "GraphQLError"},
    {"javascript", Known::kErrorBase, "HTTPException"},
    {"javascript", Known::kErrorBase, "ApolloError"},
    {"javascript", Known::kErrorBase, "CustomError"},
    {"nestjs", Known::kErrorHandler, "Catch"},
    {"nestjs", Known::kErrorHandler, "ExceptionFilter"},
    {"react", Known::kErrorHandler, "react-error-boundary.ErrorBoundary"},
    {"react", Known::kErrorHandler, "componentDidCatch"},
    {"typeorm", Known::kModelMarker, "Entity"},
    {"mongoose", Known::kModelList, "mongoose.Schema"},
    {"mongoose", Known::kModelList, "mongoose.model"},
    {"drizzle", Known::kModelList, "pgTable"},
    {"drizzle", Known::kModelList, "mysqlTable"},
    {"drizzle", Known::kModelList, "sqliteTable"},
    {"zod", Known::kRecordList, "zod.z.object"},
    {"zod", Known::kRecordList, "z.object"},
    {"sequelize", Known::kModelBase, "sequelize.Model"},
    {"dotenv", Known::kSettingsCall, "dotenv.config"},
    {"dotenv", Known::kSettingsCall, "createEnv"},
    {"dotenv", Known::kSettingsCall, "cosmiconfig.cosmiconfig"},
    {"dotenv", Known::kSettingsCall, "registerAs"},
    {"nestjs", Known::kHandlerMarker, "Controller"},
    {"nestjs", Known::kHandlerMarker, "Resolver"},
    {"nestjs", Known::kHandlerMarker, "Processor"},
    {"angular", Known::kHandlerMarker, "Component"},
    {"next", Known::kHandlerPath, "**/app/**/route.ts"},
    {"next", Known::kHandlerPath, "**/app/**/route.js"},
    {"next", Known::kHandlerPath, "**/app/**/page.tsx"},
    {"next", Known::kHandlerPath, "**/app/**/page.jsx"},
    {"next", Known::kHandlerPath, "**/pages/api/**/*.ts"},
    {"next", Known::kHandlerPath, "**/pages/**/*.tsx"},
    {"remix", Known::kHandlerPath, "**/app/routes/**/*.tsx"},
    {"remix", Known::kHandlerPath, "**/app/routes/**/*.ts"},
    {"sveltekit", Known::kHandlerPath, "**/routes/**/+page.svelte"},
    {"sveltekit", Known::kHandlerPath, "**/routes/**/+server.ts"},
    {"sveltekit", Known::kHandlerPath, "**/routes/**/+page.ts"},
    {"sveltekit", Known::kHandlerPath, "**/routes/**/+page.server.ts"},
    {"nuxt", Known::kHandlerPath, "**/server/api/**/*.ts"},
    {"nuxt", Known::kHandlerPath, "**/pages/**/*.vue"},
    {"ember", Known::kHandlerPath, "**/app/routes/**/*.js"},
    {"ember", Known::kHandlerPath, "**/app/routes/**/*.ts"},
    {"next", Known::kStartPath, "**/app/**/layout.tsx"},
    {"next", Known::kStartPath, "**/next.config.*"},
    {"next", Known::kStartPath, "**/proxy.ts"},
    {"next", Known::kStartPath, "**/pages/_app.tsx"},
    {"next", Known::kStartPath, "**/middleware.ts"},
    {"next", Known::kStartPath, "**/instrumentation.ts"},
    {"sveltekit", Known::kStartPath, "**/hooks.server.ts"},
    {"next", Known::kSettingsPath, "**/next.config.*"},
    {"nuxt", Known::kSettingsPath, "**/nuxt.config.*"},
    {"angular", Known::kSettingsPath, "**/environments/environment.ts"},
};

}  // namespace

std::span<const FrameworkName> ecmascript_frameworks() { return kNames; }

}  // namespace kestrix::index
