namespace Shop.Core
{
    public partial class Order
    {
        public void Dispose() => Add(1);
        private static decimal Sum(IEnumerable<Line> lines) => lines.Count();
        private static T Parse<T>() => default;
    }

    public static class Limits
    {
        public const int MaxLines = 10;
    }
}
