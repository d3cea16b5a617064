namespace Orders.Api.Handlers;

public static class ShowOrder
{
    public static Order? Handle(OrdersContext context, int id) => context.Orders.Find(id);
}
