namespace Shop.Core;

public class OrderException : System.ApplicationException
{
    public OrderException(string message, Status status) : base(message) { }
}

public class AuditableAttribute : Attribute
{
    public AuditableAttribute(Type type = null) { }
}
