module Admin
  # Its base bears its own name, at the top.
  class OrdersController < ::OrdersController
    def paid = Shop::Order.paid
  end
end
