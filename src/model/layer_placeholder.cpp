// Placeholder until the first unit of this layer lands.
namespace velmora {}
