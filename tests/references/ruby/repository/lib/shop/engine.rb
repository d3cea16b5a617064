class Shop::Engine < Rails::Engine
  config.gateways = { "card" => Shop::Gateways::Card, cash: Shop.gateway("cash") }
end
