from lending.reminders.channels import Channel
from lending.reminders.registry import CHANNEL_REGISTRY

__all__ = ["Channel", "CHANNEL_REGISTRY"]
