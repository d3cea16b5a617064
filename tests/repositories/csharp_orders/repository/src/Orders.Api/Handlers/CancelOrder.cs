namespace Orders.Api.Handlers;

public static class CancelOrder
{
    public static void Handle(OrdersContext context, int id)
    {
        var order = context.Orders.Find(id) ?? throw new OrderNotFoundException(id);
        context.Orders.Remove(order);
    }
}
