import XCTest

@testable import Web

final class OrderTests: XCTestCase {
  func testPay() throws {
    let controller = OrderController()
    XCTAssertNil(PayHandler.self)
    _ = Order.currencies
  }
}
