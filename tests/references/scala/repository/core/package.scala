package shop.core

package object util {
  def label(text: String): String = s"order.$text"
}
