Rails.application.routes.draw do
  root to: "orders#index"
  resources :orders, only: [:index]
  namespace :admin do
    resources :orders
    get "/paid" => "orders#paid"
  end
  mount Shop::Engine => "/shop"
end
