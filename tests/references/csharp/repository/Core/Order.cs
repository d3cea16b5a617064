using System;
using System.Collections.Generic;

namespace Shop.Core;

public enum Status { Open, Paid }

public record Address(string Street, Country Country);

public class Country { }

public abstract class Entity
{
    public int Id { get; protected set; }
    protected void Touch() { }
    public abstract string Describe();
}

public interface IPriced : IComparable
{
    decimal Total { get; }
    decimal Add(decimal tax);
}

[Auditable(typeof(Order))]
public partial class Order : Entity, IPriced, IDisposable
{
    // The property has the name of its type.
    public Address Address { get; set; } = new Address("", new Country());
    public Status Status { get; private set; }
    [Auditable] private readonly List<Line> _lines = new();
    public decimal Total => Sum(_lines);

    public Order(Address address)
    {
        Address = address;
        Touch();
    }

    public decimal Add(decimal tax)
    {
        if (_lines.Count > MaxLines) throw new OrderException(nameof(Order), Status.Paid);
        return Parse<Line>() ?? Total;
    }

    public override string Describe() => Status switch
    {
        Status.Open => "open",
        _ => throw new OrderException("unknown", Status),
    };

    public class Line { }
}
