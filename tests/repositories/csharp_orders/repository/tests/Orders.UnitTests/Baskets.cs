using Orders.Domain;

namespace Orders.UnitTests;

internal static class Baskets
{
    public static OrderLine[] Small => [new("pen", 1, 2)];
}
