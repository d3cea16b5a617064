#include "kestrix/languages/frameworks.h"

namespace kestrix::index {

std::span<const FrameworkName> rust_frameworks();

namespace {

constexpr FrameworkName kNames[] = {
    {"Rust", Known::kMain, "main"},
    {"rust", Known::kEndsProgram, "process.exit"},
    {"rust", Known::kEndsProgram, "process.abort"},
    {"axum", Known::kResponse, "IntoResponse"},
    {"http", Known::kResponse, "Response.builder"},
    {"actix", Known::kResponse, "HttpResponse"},
    {"actix", Known::kResponse, "ResponseError"},
    {"rust", Known::kErrorBase, "std.error.Error"},
    {"rust", Known::kErrorBase, "core.error.Error"},
    {"rust", Known::kErrorBase, "Error"},
    {"rust", Known::kErrorBase, "error.Error"},
    {"thiserror", Known::kErrorBase, "thiserror.Error"},
    {"rust", Known::kErrorValue, "anyhow.anyhow"},
    {"rust", Known::kErrorValue, "bail"},
    {"rust", Known::kErrorValue, "anyhow.bail"},
    {"diesel", Known::kModelMarker, "Queryable"},
    {"diesel", Known::kModelMarker, "Insertable"},
    {"diesel", Known::kModelMarker, "Identifiable"},
    {"diesel", Known::kModelMarker, "HasQuery"},
    {"diesel", Known::kModelMarker, "AsChangeset"},
    {"diesel", Known::kModelMarker, "Selectable"},
    {"serde", Known::kRecordMarker, "Serialize"},
    {"serde", Known::kRecordMarker, "Deserialize"},
    {"sqlx", Known::kModelMarker, "FromRow"},
    {"sea-orm", Known::kModelMarker, "DeriveEntityModel"},
    {"clap", Known::kSettingsBase, "clap.Parser"},
    {"clap", Known::kSettingsBase, "Parser"},
    {"clap", Known::kSettingsBase, "Args"},
    {"clap", Known::kHandlerMarker, "Subcommand"},
    {"rust", Known::kSettingsCall, "env.var"},
    {"rust", Known::kSettingsCall, "env.var_os"},
    {"rust", Known::kSettingsCall, "dotenvy.var"},
    {"axum", Known::kHandlerMarker, "utoipa.path"},
    {"axum", Known::kHandlerMarker, "get"},
    {"axum", Known::kHandlerMarker, "post"},
    {"axum", Known::kHandlerMarker, "put"},
    {"axum", Known::kHandlerMarker, "delete"},
    {"axum", Known::kHandlerMarker, "patch"},
    {"rust", Known::kLoader, "libloading.Library.new"},
    {"rust", Known::kLoader, "inventory.iter"},
    {"rust", Known::kStartPath, "src/main.rs"},
    {"rust", Known::kStartPath, "**/src/main.rs"},
    {"rust", Known::kStartPath, "**/src/bin/*.rs"},
};

}  // namespace

std::span<const FrameworkName> rust_frameworks() { return kNames; }

}  // namespace kestrix::index
