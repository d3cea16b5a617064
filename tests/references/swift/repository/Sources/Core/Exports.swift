@_exported import Money
