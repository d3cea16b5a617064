using Orders.Domain.Pricing;

namespace Orders.Api.Handlers;

public static class PlaceOrder
{
    private static readonly Discount[] Discounts = [new LoyaltyDiscount(), new BulkDiscount()];

    public static Order Handle(OrdersContext context, OrderLine[] lines)
    {
        if (lines is []) throw new EmptyOrderException();
        var order = new Order(lines, Discounts.Sum(discount => discount.Of(lines)));
        context.Orders.Add(order);
        return order;
    }
}
