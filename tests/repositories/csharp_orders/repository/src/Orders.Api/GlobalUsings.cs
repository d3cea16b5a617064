global using Orders.Data;
global using Orders.Api.Handlers;
