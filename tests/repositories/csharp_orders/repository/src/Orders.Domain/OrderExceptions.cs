namespace Orders.Domain;

public class EmptyOrderException() : Exception("An order has lines.");
public class OrderNotFoundException(int id) : Exception($"There is no order {id}.");
