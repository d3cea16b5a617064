// swift-tools-version:5.9
import PackageDescription

let package = Package(
  name: "shop",
  targets: [
    .target(name: "Core"),
    .target(name: "Money", path: "Lib"),
    .executableTarget(
      name: "Web",
      dependencies: [.target(name: "Core"), .product(name: "Vapor", package: "vapor")]),
    .testTarget(name: "WebTests", dependencies: ["Web"]),
  ]
)
