namespace Orders.Domain.Pricing;

public abstract class Discount
{
    public abstract decimal Of(OrderLine[] lines);
}
