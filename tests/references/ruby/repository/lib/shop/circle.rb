class A < A::B
  class B < A
    def x = y
  end
  def z = y
end
