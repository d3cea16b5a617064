using Shop.Core;
using Shop.Core.Data;
using Exceptions = Shop.Core.OrderException;
using static Shop.Web.Checks;

namespace Shop.Web;

[ApiController, Auditable(typeof(OrderHandler))]
public class OrderHandler(IRepository<Order> orders) : ControllerBase
{
    public delegate void Done(Order order);

    [HttpGet("orders/{id}")]
    public ActionResult<Order> Get(int id, object value)
    {
        try
        {
            NotNull(orders);
            var entity = orders.Find(id);
            entity.Touch();
            if (value is Order { Status: Status.Paid } paid) return paid;
            if (value is Entity || value is not Country) return Ok(Repository<Order>.Over(null));
            var copy = (Order)value;
            return Run(copy, Convert, o => o.Address);
        }
        catch (Exceptions error) when (error.InnerException is TimeoutException)
        {
            throw;
        }
    }

    private static Order Convert(Order order) => order;
}

internal static class Checks
{
    public static void NotNull(object value) { }
}
