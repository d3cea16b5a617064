internal static class Extensions
{
    public static void AddOrders(this IHostApplicationBuilder builder) =>
        builder.Services.AddDbContext<OrdersContext>();
}
