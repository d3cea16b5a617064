package shop.core

open class Loop {
    companion object : Loop() {
        fun spin() {}
    }
}
