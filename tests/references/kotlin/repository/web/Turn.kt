package shop.web

import shop.core.Loop

fun turn() {
    Loop.spin()
    Loop.nothing()
}
