module Shop
  class Order < ApplicationRecord
    LIMIT = 10
    GATEWAYS = [Gateways::Card, Gateways::Cash].freeze
    belongs_to :user
    scope :paid, -> { where(state: "paid") }

    def pay(with: Gateways::Cash)
      gateway = with.new(self)
      raise Invalid.new("no user") unless user
      raise Error, Rails.configuration.shop_message if gateway.closed?

      gateway.charge
    rescue Gateways::Refused, Timeout::Error => error
      case error
      when Gateways::Refused then retry_with(Gateways::Base)
      when LIMIT then nil
      end
    end
  end
end
