module Failing
  extend ActiveSupport::Concern

  included do
    rescue_from Shop::Error, with: :show_error
    rescue_from Shop::Gateways::Refused, ActiveRecord::RecordNotFound do |error|
      render plain: error.message
    end
  end

  def show_error(error)
    raise error unless error.is_a?(Shop::Error)
  end
end
