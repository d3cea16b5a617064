using Microsoft.EntityFrameworkCore;
using Orders.Domain;

namespace Orders.Data;

public class OrdersContext(DbContextOptions options) : DbContext(options)
{
    public DbSet<Order> Orders { get; set; }
}
