#include "tests/languages/resolver_cases.h"

namespace kestrix::index {
namespace {

TEST(RubyResolver, FindsRequiredFiles) {
  check({
      {"by their place",
       {{"bin/run.rb", "require_relative '../lib/a/b'\nrequire_relative 'gone'\nrequire 'a'"},
        {"lib/a.rb", "require 'a/b'\nrequire 'json'"},
        {"lib/a/b.rb", ""},
        {"spec/a_spec.rb", "require 'spec_helper'\nrequire 'a'"},
        {"spec/spec_helper.rb", ""}},
       {"bin/run.rb -> lib/a/b.rb", "bin/run.rb -> lib/a.rb", "lib/a.rb -> lib/a/b.rb",
        "spec/a_spec.rb -> spec/spec_helper.rb", "spec/a_spec.rb -> lib/a.rb", "unresolved 1"}},
      {"a nested load path serves its own tree only",
       {{"gems/x/lib/x.rb", "require 'x/y'"},
        {"gems/x/lib/x/y.rb", ""},
        {"lib/main.rb", "require 'x/y'"}},
       {"gems/x/lib/x.rb -> gems/x/lib/x/y.rb"}},
  });
}

TEST(RubyResolver, FindsConstants) {
  check({
      {"by the convention, where several files open a namespace",
       {{"app/models/user.rb", "class User < Record; end"},
        {"app/models/user/role.rb", "class User; class Role; end; end"},
        {"app/models/record.rb", "class Record; end"},
        {"app/jobs/job.rb",
         "class Job; def run; User::Role.all; User.first; String.new; end; end"}},
       {"app/models/user.rb -> app/models/record.rb", "app/jobs/job.rb -> app/models/user.rb",
        "app/jobs/job.rb -> app/models/user/role.rb"}},
      {"from the innermost namespace outwards",
       {{"lib/a/client.rb", "module A; class Client; def f; HTTPServer::PORT; Log; end; end; end"},
        {"lib/a/http_server.rb", "module A; class HTTPServer; PORT = 1; end; end"},
        {"lib/b/http_server.rb", "module B; class HTTPServer; end; end"},
        {"lib/log.rb", "class Log; end"}},
       {"lib/a/client.rb -> lib/a/http_server.rb", "lib/a/client.rb -> lib/log.rb"}},
      {"by the file's own name, in a folder that is none of the namespace",
       {{"lib/a/reader.rb", "module A; class Reader; def go; PageReader.new; end; end; end"},
        {"lib/a/readers/page_reader.rb", "module A; class PageReader; end; end"},
        {"lib/b/all.rb", "module A; class PageReader; LIMIT = 1; end; end"}},
       {"lib/a/reader.rb -> lib/a/readers/page_reader.rb"}},
      {"not in what adds to others' classes",
       {{"lib/core_ext/string.rb", "class String; def shout; end; end"},
        {"lib/active_record_ext.rb", "module ActiveRecord; class Base; end; end"},
        {"app/models/user.rb", "class User < ActiveRecord::Base; NAME = String.new; end"}},
       {}},
  });
}

}  // namespace
}  // namespace kestrix::index
