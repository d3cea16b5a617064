namespace Orders.Domain;

public record OrderLine(string Article, int Count, decimal Price);

public record Order(IReadOnlyList<OrderLine> Lines, decimal Discount)
{
    public int Id { get; init; }
}
