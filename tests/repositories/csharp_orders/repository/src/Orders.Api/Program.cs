var builder = WebApplication.CreateBuilder(args);
builder.AddOrders();
var app = builder.Build();
app.MapPost("/orders", PlaceOrder.Handle);
app.MapGet("/orders/{id}", ShowOrder.Handle);
app.MapDelete("/orders/{id}", CancelOrder.Handle);
app.Run();
