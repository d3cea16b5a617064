#include "kestrix/languages/frameworks.h"

namespace kestrix::index {

std::span<const FrameworkName> go_frameworks();

namespace {

constexpr FrameworkName kNames[] = {
    {"go", Known::kErrorTest, "errors.As"},
    {"go", Known::kErrorTest, "errors.AsType"},
    {"go", Known::kErrorTest, "errors.Is"},
    {"go", Known::kMain, "main"},
    {"go", Known::kErrorMethod, "Error"},
    {"go", Known::kEndsProgram, "os.Exit"},
    {"go", Known::kEndsProgram, "log.Fatal"},
    {"go", Known::kEndsProgram, "log.Fatalf"},
    {"go", Known::kResponse, "http.Error"},
    {"go", Known::kErrorValue, "errors.New"},
    {"go", Known::kErrorValue, "fmt.Errorf"},
    {"go", Known::kErrorValue, "errors.Wrap"},
    {"go", Known::kErrorValue, "errors.Errorf"},
    {"go", Known::kErrorValue, "status.Error"},
    {"go", Known::kErrorBase, "error"},
    {"gorm", Known::kModelBase, "gorm.Model"},
    {"go", Known::kSettingsCall, "viper.Get"},
    {"go", Known::kSettingsCall, "viper.Unmarshal"},
    {"go", Known::kSettingsCall, "envconfig.Process"},
    {"go", Known::kSettingsCall, "flag.String"},
    {"go", Known::kSettingsCall, "flag.Bool"},
    {"go", Known::kSettingsCall, "flag.Int"},
    {"go", Known::kSettingsCall, "env.Parse"},
    {"go", Known::kSettingsCall, "flaggy.String"},
    {"go", Known::kSettingsCall, "flaggy.Bool"},
    {"go", Known::kSettingsCall, "pflag.String"},
    {"go", Known::kLoader, "plugin.Open"},
    {"cobra", Known::kHandlerMarker, "cobra.Command"},
    {"go", Known::kStartPath, "**/cmd/*/main.go"},
    {"go", Known::kStartPath, "main.go"},
    {"go", Known::kStartPath, "cmd/**/main.go"},
    {"testify", Known::kTestBase, "assert.Equal"},
    {"testify", Known::kTestBase, "assert.EqualValues"},
    {"testify", Known::kTestBase, "assert.NoError"},
    {"testify", Known::kTestBase, "assert.True"},
    {"testify", Known::kTestBase, "require.Equal"},
    {"testify", Known::kTestBase, "require.NoError"},
    {"testify", Known::kTestBase, "require.True"},
    {"testify", Known::kTestBase, "suite.Run"},
};

}  // namespace

std::span<const FrameworkName> go_frameworks() { return kNames; }

}  // namespace kestrix::index
