import Foundation

public protocol Priced: AnyObject {
  associatedtype Item: Encodable
  var name: String { get }
  func total(of items: [Item]) throws -> Amount
}

enum OrderError: Error {
  case empty
  case refused(reason: String)
}

@MainActor
public class Order: Base, Priced {
  public typealias Item = Line
  static let currencies = ["EUR", "USD"]
  private let lines: [Line]
  var name: String { label("order") }
  var status = Status.new

  init(lines: [Line], store: any Store = MemoryStore()) {
    self.lines = lines
    super.init()
  }

  public func total(of items: [Line]) throws -> Amount {
    guard let first = items.first else { throw OrderError.empty }
    if first.amount == .zero { throw OrderError.refused(reason: name) }
    return sum(items)
  }

  enum Status: String {
    case new, paid
  }
}

public struct Line: Codable {
  let amount: Amount
  var next: Box<Line>? = nil
}

open class Base {}
