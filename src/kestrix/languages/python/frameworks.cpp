#include "kestrix/languages/frameworks.h"

namespace kestrix::index {

std::span<const FrameworkName> python_frameworks();

namespace {

constexpr FrameworkName kNames[] = {
    {"python", Known::kEndsProgram, "sys.exit"},
    {"django", Known::kResponse, "JsonResponse"},
    {"django", Known::kResponse, "HttpResponse"},
    {"flask", Known::kResponse, "jsonify"},
    {"fastapi", Known::kResponse, "JSONResponse"},
    {"rest_framework", Known::kResponse, "response.Response"},
    {"python", Known::kErrorBase, "Exception"},
    {"python", Known::kErrorBase, "BaseException"},
    {"python", Known::kErrorBase, "Warning"},
    {"django", Known::kErrorHandler, "MiddlewareMixin.process_exception"},
    {"django", Known::kModelBase, "models.Model"},
    {"django", Known::kModelBase, "AbstractUser"},
    {"django", Known::kModelBase, "AbstractBaseUser"},
    {"django", Known::kModelBase, "MPTTModel"},
    {"django", Known::kModelBase, "contenttypes.models.ContentType"},
    {"sqlalchemy", Known::kModelBase, "DeclarativeBase"},
    {"sqlalchemy", Known::kModelBase, "db.Model"},
    {"sqlalchemy", Known::kModelBase, "declarative_base"},
    {"sqlalchemy", Known::kModelBase, "SQLModel"},
    {"pydantic", Known::kRecordBase, "pydantic.BaseModel"},
    {"python", Known::kRecordMarker, "dataclasses.dataclass"},
    {"python", Known::kRecordMarker, "attr.s"},
    {"python", Known::kRecordMarker, "attrs.define"},
    {"python", Known::kRecordMarker, "attr.define"},
    {"mongoengine", Known::kModelBase, "mongoengine.Document"},
    {"python", Known::kRecordBase, "typing.TypedDict"},
    {"python", Known::kRecordBase, "typing.NamedTuple"},
    {"pydantic", Known::kSettingsBase, "BaseSettings"},
    {"python", Known::kLoader, "importlib.import_module"},
    {"python", Known::kLoader, "import_string"},
    {"python", Known::kLoader, "entry_points"},
    {"python", Known::kLoader, "iter_entry_points"},
    {"python", Known::kLoader, "import_module"},
    {"python", Known::kLoader, "__import__"},
    {"python", Known::kLoader, "pkgutil.iter_modules"},
    {"python", Known::kLoader, "load_entry_point"},
    {"python", Known::kLoader, "stevedore.ExtensionManager"},
    {"python", Known::kLoader, "pluggy.PluginManager"},
    {"python", Known::kLoader, "walk_packages"},
    {"django", Known::kHandlerBase, "BaseCommand"},
    {"django", Known::kHandlerBase, "views.View"},
    {"django", Known::kHandlerBase, "generic.View"},
    {"django", Known::kHandlerBase, "APIView"},
    {"django", Known::kHandlerBase, "ViewSet"},
    {"django", Known::kHandlerBase, "ModelViewSet"},
    {"django", Known::kHandlerBase, "GenericViewSet"},
    {"django", Known::kHandlerBase, "TemplateView"},
    {"flask", Known::kHandlerBase, "MethodView"},
    {"celery", Known::kHandlerBase, "celery.Task"},
    {"celery", Known::kHandlerMarker, "shared_task"},
    {"celery", Known::kHandlerMarker, "app.task"},
    {"click", Known::kHandlerMarker, "click.command"},
    {"click", Known::kHandlerMarker, "click.group"},
    {"graphene", Known::kHandlerBase, "graphene.Mutation"},
    {"django", Known::kHandlerMarker, "dispatch.receiver"},
    {"django", Known::kHandlerPath, "**/management/commands/[!_]*.py"},
    {"django", Known::kStartPath, "**/manage.py"},
    {"django", Known::kStartPath, "**/wsgi.py"},
    {"django", Known::kStartPath, "**/asgi.py"},
    {"python", Known::kStartPath, "**/__main__.py"},
    {"python", Known::kTestBase, "unittest.TestCase"},
    {"python", Known::kTestBase, "TestCase"},
    {"python", Known::kTestBase, "TransactionTestCase"},
    {"python", Known::kTestBase, "LiveServerTestCase"},
    {"django", Known::kSettingsPath, "**/settings.py"},
    {"django", Known::kSettingsPath, "**/settings/*.py"},
    {"pytest", Known::kTestBase, "pytest.fixture"},
};

}  // namespace

std::span<const FrameworkName> python_frameworks() { return kNames; }

}  // namespace kestrix::index
