import Core
import Vapor

struct OrderController: RouteCollection {
  let handlers: [any Handler.Type] = [PayHandler.self]

  func boot(routes: RoutesBuilder) throws {
    routes.get("orders", ":id", use: show)
    routes.register(collection: AdminController())
    let key = Environment.get("SHOP_KEY") ?? ProcessInfo.processInfo.environment["HOME"]
  }

  func show(request: Request) async throws -> Order {
    do {
      let amount = try await Order(lines: []).total(of: Self.find(Line.self))
      switch amount {
      case Amount.zero: throw Abort(.notFound, reason: "No order")
      case is Line: break
      default: fatalError()
      }
    } catch let error as OrderError {
      throw error
    } catch OrderError.empty {
      label("x")
    }
  }

  static func find<T>(_ type: T.Type) -> T {}
}

struct AdminController {}
protocol Handler {}
extension Order: Handler {}

private struct PayHandler: Handler {
  let order: Order
}
