using Shop.Core;
using Shop.Core.Data;

namespace Shop.Web;

public static class Wiring
{
    private static readonly Type[] Handlers = { typeof(OrderHandler), typeof(Shop.Core.Order) };
    private static readonly Dictionary<string, Type> ByName = new() { ["order"] = typeof(Order) };

    public static IServiceCollection AddShop(this IServiceCollection services, IConfiguration configuration)
    {
        services.AddScoped<IRepository<Order>, Repository<Order>>();
        services.AddSingleton(typeof(IRepository<>), typeof(Repository<>));
        services.Configure<ShopSettings>(configuration.GetSection("Shop:Limits"));
        var url = configuration["Shop:Url"] ?? Environment.GetEnvironmentVariable("SHOP_URL");
        return services;
    }
}

public class ShopSettings { public string Url { get; set; } = ""; }
