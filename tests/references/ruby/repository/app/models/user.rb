class User < ApplicationRecord
  has_many :orders, class_name: "Shop::Order"
  has_many :addresses
  attr_accessor :token

  Badge = Struct.new(:name, :level) do
    def to_s = "#{name} #{level}"
  end

  def badge = Badge.new(name, token)
end
