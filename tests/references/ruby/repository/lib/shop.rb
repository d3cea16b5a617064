require "net/http"
require_relative "shop/gateways/base"

module Shop
  autoload :Engine, "shop/engine"

  class Error < StandardError; end
  Invalid = Class.new(Error)

  class << self
    def configuration = Configuration.new

    def gateway(name) = Gateways.const_get(name)

    private

    def secret = ENV["SHOP_SECRET"]
  end

  class Configuration
    attr_reader :mailer
  end
end
