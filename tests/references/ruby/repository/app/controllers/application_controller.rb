class ApplicationController < ActionController::Base
  include Failing

  def current_user = User.find(session[:id])
end
