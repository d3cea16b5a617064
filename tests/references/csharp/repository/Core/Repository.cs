namespace Shop.Core.Data;

public interface IRepository<T> where T : Entity
{
    T Find(int id);
}

public class Repository<T>(Context context) : IRepository<T> where T : Entity
{
    public T Find(int id) => context.Set<T>().Find(id);
    public static Repository<T> Over(Context context) => new(context);
}

public class Context : DbContext
{
    public DbSet<Order> Orders { get; set; }
}
