#include "kestrix/languages/frameworks.h"

namespace kestrix::index {

std::span<const FrameworkName> ruby_frameworks();

namespace {

constexpr FrameworkName kNames[] = {
    {"ruby", Known::kErrorBase, "StandardError"},
    {"ruby", Known::kErrorBase, "Exception"},
    {"ruby", Known::kErrorBase, "RuntimeError"},
    {"ruby", Known::kErrorBase, "ArgumentError"},
    {"rails", Known::kModelBase, "ApplicationRecord"},
    {"rails", Known::kModelBase, "ActiveRecord.Base"},
    {"ruby", Known::kErrorHandler, "rescue_from"},
    {"ruby", Known::kSettingsCall, "ENV.fetch"},
    {"ruby", Known::kSettingsCall, "config_for"},
    {"ruby", Known::kLoader, "const_get"},
    {"ruby", Known::kLoader, "constantize"},
    {"ruby", Known::kLoader, "Dir.glob"},
    {"rails", Known::kHandlerBase, "ApplicationController"},
    {"rails", Known::kHandlerBase, "ActionController.Base"},
    {"rails", Known::kHandlerBase, "ActionController.API"},
    {"rails", Known::kHandlerBase, "ApplicationJob"},
    {"rails", Known::kHandlerBase, "ActiveJob.Base"},
    {"rails", Known::kHandlerBase, "ApplicationMailer"},
    {"rails", Known::kHandlerBase, "ActionMailer.Base"},
    {"rails", Known::kHandlerBase, "Sidekiq.Job"},
    {"rails", Known::kHandlerBase, "Sidekiq.Worker"},
    {"rails", Known::kHandlerBase, "Thor"},
    {"rails", Known::kHandlerBase, "ActionCable.Channel.Base"},
    {"rails", Known::kHandlerPath, "**/app/controllers/**/*_controller.rb"},
    {"rails", Known::kHandlerPath, "**/app/jobs/**/*.rb"},
    {"rails", Known::kHandlerPath, "**/app/mailers/**/*.rb"},
    {"rails", Known::kHandlerPath, "**/app/workers/**/*.rb"},
    {"rails", Known::kStartPath, "config/routes.rb"},
    {"rails", Known::kStartPath, "config/application.rb"},
    {"rails", Known::kStartPath, "config/environment.rb"},
    {"rails", Known::kSettingsPath, "config/application.rb"},
    {"rails", Known::kSettingsPath, "config/environments/*.rb"},
    {"rails", Known::kSettingsPath, "config/settings.yml"},
};

}  // namespace

std::span<const FrameworkName> ruby_frameworks() { return kNames; }

}  // namespace kestrix::index
