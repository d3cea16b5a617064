from lending.reminders.channels import Channel
from lending.reminders.letter import Letter

CHANNEL_REGISTRY: dict[str, type[Channel]] = {"letter": Letter}
