namespace Orders.Domain.Pricing;

public class LoyaltyDiscount : Discount
{
    public override decimal Of(OrderLine[] lines) => 1;
}

public class BulkDiscount : Discount
{
    public override decimal Of(OrderLine[] lines) => lines.Length > 10 ? 5 : 0;
}
