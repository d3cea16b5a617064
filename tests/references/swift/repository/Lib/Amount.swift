public struct Amount: Codable {
  public static let zero = Amount(cents: 0)
  let cents: Int
}
