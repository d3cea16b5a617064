extension Order {
  func sum(_ items: [Line]) -> Amount {
    #if DEBUG
      log(items)
    #endif
    describe()
    return items.last?.amount ?? Amount.zero
  }

  func describe() {
    guard status == Status.paid else { return }
  }
}

final class MemoryStore: Store {}
protocol Store {}

func label(_ text: String) -> String { "label.\(text)" }
