using Orders.Domain.Pricing;

namespace Orders.UnitTests;

public class DiscountTests
{
    [Fact]
    public void RewardsLoyalty() => Assert.Equal(1, new LoyaltyDiscount().Of(Baskets.Small));
}
