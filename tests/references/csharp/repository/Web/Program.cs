using Shop.Web;

var builder = WebApplication.CreateBuilder(args);
builder.Services.AddShop(builder.Configuration);
var app = builder.Build();
app.MapGet("/orders", OrderEndpoints.List);
app.MapHub<OrderHub>("/hub");
app.Run();

class OrderHub : Hub<Shop.Core.Order> { }

static class OrderEndpoints
{
    public static string List() => "Web/OrderHandler.cs";
}
